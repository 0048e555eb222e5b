#include <iostream>
#include <memory>

#include "catalogue/open_catalogue.hpp"
#include "command.hpp"
#include "path_report.hpp"
#include "platform/in_memory/logging.hpp"
#include "question_options.hpp"

namespace evopath {

using tarn::evolution::catalogue::BrowsableRepository;
using tarn::evolution::catalogue::Question;

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

PathReport answer(BrowsableRepository& repository, const Question& question) {
  if (const auto path = repository.findPath(question.from, question.to)) {
    return reportPath(repository, *path);
  }
  if (repository.combine(question.from).empty()) {
    return reportNoPath("the versions to start from cannot stand together.");
  }
  if (repository.combine(question.to).empty()) {
    return reportNoPath("the versions to reach cannot stand together.");
  }
  return reportNoPath("no sequence of steps leads there.");
}

ExitStatus runPath(const PathOptions& options) {
  if (options.trace) traceToStandardError();
  const auto repository = tarn::evolution::catalogue::openCatalogue(options.catalogue);
  const PathReport report = answer(*repository, options.ask(*repository));
  (options.json ? printJson : printText)(report, std::cout);
  return report.found ? found : noPath;
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
