#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/path_picture.hpp"
#include "catalogue/text/display_text.hpp"
#include "command.hpp"
#include "explanation_status.hpp"
#include "messages/trace.hpp"
#include "output_option.hpp"
#include "path_format.hpp"
#include "platform/in_memory/logging.hpp"
#include "question_options.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;
using tarn::evolution::diagnostics::TraceLevel;
using tarn::evolution::pathfinder::BaselineHop;
using tarn::evolution::pathfinder::VersionBaseline;

namespace {

struct PathOptions : QuestionOptions {
  PathFormatOption form;
  OutputOption output;
  bool trace = false;
};

/// The path finder's logger, and all levels that it writes on.
constexpr const char* traceChannel = "tarn::evolution::pathfinder";
constexpr unsigned traceLevels =
    static_cast<unsigned>(TraceLevel::Reasoning) | static_cast<unsigned>(TraceLevel::CacheStore);

void traceToStandardError() {
  foundation::log::in_memory::addRecordSink(
      [](const foundation::log::in_memory::RecordView& record) {
        std::cerr << record.channel << " [" << record.severity << "] " << toVisible(record.text)
                  << "\n";
      });
  foundation::log::in_memory::setEnabledLevels(traceChannel, traceLevels);
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

void printNoPath(const Explanation& explanation, const StepWeights& weights,
                 const PathOptions& options) {
  std::ostringstream text;
  if (options.form.format == PathFormat::Json) {
    writeNoPathJson(explanation, weights, text);
  } else {
    writeExplanationText(explanation, weights, text);
  }
  if (options.form.isPicture()) {
    std::cerr << text.str();
  } else {
    options.output.write(text.str());
  }
}

/// The baseline to draw the path from. A path without steps names none.
VersionBaseline sourceOf(const std::vector<BaselineHop>& path, const PathOptions& options,
                         BrowsableRepository& repository, const Question& question) {
  if (!path.empty()) return path.front().from;
  if (!options.form.isPicture()) return {};
  const auto sources = repository.combine(question.from);
  return sources.empty() ? VersionBaseline{} : sources.front();
}

ExitStatus runPath(const PathOptions& options) {
  if (options.trace) traceToStandardError();
  const auto repository = openCatalogue(options.catalogue);
  const Question question = options.ask(*repository);
  const UnknownEntries unknown = findUnknown(*repository, question);
  if (!unknown.entries.empty()) throw std::invalid_argument(describe(unknown));
  if (const auto path = findPath(*repository, question)) {
    const auto picture =
        drawPath(weightsOf(*repository), sourceOf(*path, options, *repository, question), *path);
    options.output.write(renderPath(picture, options.form.format, options.output.colouring()));
    return ExitStatus::Found;
  }
  const Explanation explanation = explain(*repository, question);
  printNoPath(explanation, weightsOf(*repository), options);
  return statusOf(explanation);
}

}  // namespace

void addPathCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<PathOptions>();
  CLI::App* path =
      program.add_subcommand("path", "Find the least-weight path between two selections");
  options->addTo(*path);
  options->form.addTo(*path);
  options->output.addTo(*path);
  path->add_flag("--trace", options->trace, "Show the path finder's reasoning on standard error");
  path->footer(
      "Exit status: 0 a path was found, 1 there is none, 2 bad usage or input.\n"
      "Example: evopath path data/operators.json --question --format html --output path.html");
  path->callback([options, &action] { action = [options] { return runPath(*options); }; });
}

}  // namespace evopath
