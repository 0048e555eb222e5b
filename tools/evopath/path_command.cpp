#include <iostream>
#include <memory>
#include <stdexcept>

#include "catalogue/explanation.hpp"
#include "catalogue/open_catalogue.hpp"
#include "command.hpp"
#include "explanation_status.hpp"
#include "explanation_text.hpp"
#include "messages/messages.hpp"
#include "path_report.hpp"
#include "platform/exception.hpp"
#include "platform/in_memory/logging.hpp"
#include "question_options.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;
using tarn::evolution::pathfinder::BaselineHop;
using ConflictingDependencies =
    foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies>;

namespace {

struct PathOptions : QuestionOptions {
  bool json = false;
  bool trace = false;
};

void traceToStandardError() {
  foundation::log::in_memory::addRecordSink(
      [](const foundation::log::in_memory::RecordView& record) {
        std::cerr << record.channel << " [" << record.severity << "] " << record.text << "\n";
      });
  foundation::log::in_memory::setEnabledLevels("tarn::evolution::pathfinder", 4 | 8);
}

/// The path; none as well when the path finder stumbles over a version that cannot be linked.
std::optional<std::vector<BaselineHop>> findPath(BrowsableRepository& repository,
                                                 const Question& question) {
  try {
    return repository.findPath(question.from, question.to);
  } catch (const ConflictingDependencies&) {
    return std::nullopt;
  }
}

ExitStatus runPath(const PathOptions& options) {
  if (options.trace) traceToStandardError();
  const auto repository = openCatalogue(options.catalogue);
  const Question question = options.ask(*repository);
  const UnknownEntries unknown = findUnknown(*repository, question);
  if (!unknown.entries.empty()) throw std::invalid_argument(describe(unknown));
  const auto print = options.json ? printJson : printText;
  if (const auto path = findPath(*repository, question)) {
    print(reportPath(*repository, *path), std::cout);
    return found;
  }
  const Explanation explanation = explain(*repository, question);
  print(reportNoPath(*repository, explanation), std::cout);
  return statusOf(explanation);
}

}  // namespace

void addPathCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<PathOptions>();
  CLI::App* path =
      program.add_subcommand("path", "Find the least-weight path between two selections");
  options->addTo(*path);
  path->add_flag("--json", options->json, "Print the answer as JSON");
  path->add_flag("--trace", options->trace, "Show the path finder's reasoning on standard error");
  path->footer(
      "Exit status: 0 a path was found, 1 there is none, 2 bad usage or input.\n"
      "Example: evopath path data/operators.json --from cert-manager=1.12.1 --to "
      "cert-manager=1.14.2");
  path->callback([options, &action] { action = [options] { return runPath(*options); }; });
}

}  // namespace evopath
