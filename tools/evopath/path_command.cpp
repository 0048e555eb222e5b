#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "attended_explanation.hpp"
#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/path_picture.hpp"
#include "catalogue/text/display_text.hpp"
#include "command.hpp"
#include "interruption.hpp"
#include "limit_options.hpp"
#include "messages/trace.hpp"
#include "output_option.hpp"
#include "path_format.hpp"
#include "platform/in_memory/logging.hpp"
#include "question_options.hpp"
#include "search_monitor.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;
using tarn::evolution::diagnostics::TraceLevel;
using tarn::evolution::pathfinder::BaselineHop;
using tarn::evolution::pathfinder::SearchLimits;
using tarn::evolution::pathfinder::SearchStopped;
using tarn::evolution::pathfinder::VersionBaseline;

namespace {

struct PathOptions : QuestionOptions {
  PathFormatOption form;
  OutputOption output;
  LimitOptions limits;
  bool isExplained = true;
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

struct SearchResult {
  std::optional<std::vector<BaselineHop>> path = std::nullopt;
  bool hasStumbled = false;  ///< over a version that cannot be linked; then there may be a path
};

SearchResult search(const PathOptions& options, BrowsableRepository& repository,
                    const Question& question, const SearchLimits& limits) {
  const auto line = options.trace ? SearchMonitor::Line::Never : SearchMonitor::Line::OnTerminal;
  try {
    return {.path = searchAttended(
                limits, SearchMonitor::Task::Search, line, [&](const SearchLimits& attended) {
                  return repository.findPath(question.from, question.to, attended);
                })};
  } catch (const ConflictingDependencies&) {
    return {.hasStumbled = true};
  }
}

/// Where a picture was asked for, there is none to stand in its place.
void writeNoPath(const std::string& text, const PathOptions& options) {
  if (options.form.isPicture()) {
    std::cerr << text;
  } else {
    options.output.write(text);
  }
}

void writeExplanation(const Explanation& explanation, const StepWeights& weights,
                      const PathOptions& options) {
  std::ostringstream text;
  if (options.form.format == PathFormat::Json) {
    writeNoPathJson(explanation, weights, text);
  } else {
    writeExplanationText(explanation, weights, text);
  }
  writeNoPath(text.str(), options);
}

/// The bare answer, which was proven by the search itself.
ExitStatus tellAbsence(const PathOptions& options, const std::string& text) {
  const bool isJson = options.form.format == PathFormat::Json;
  writeNoPath(isJson ? "{\n  \"found\": false\n}\n" : text + "\n", options);
  return ExitStatus::NoPath;
}

ExitStatus explainAbsence(const PathOptions& options, BrowsableRepository& repository,
                          const Question& question, const SearchLimits& limits) {
  const Explanation explanation = explainAttended(repository, question, explanationBudget, limits);
  writeExplanation(explanation, weightsOf(repository), options);
  return statusOf(explanation);
}

/// For a search that has ended without a path and has not stumbled.
ExitStatus answerAbsence(const PathOptions& options, BrowsableRepository& repository,
                         const Question& question, const SearchLimits& limits) {
  if (!options.isExplained) return tellAbsence(options, "No path.");
  const char* const unexplained = "no path; interrupted before it was explained";
  throwIfInterrupted(unexplained);
  try {
    return explainAbsence(options, repository, question, limits);
  } catch (const SearchStopped&) {
    throwIfInterrupted(unexplained);
    return tellAbsence(options, "No path. A limit was reached before it was explained.");
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
  const SearchLimits limits = options.limits.fromNow();
  const auto repository = openCatalogue(options.catalogue);
  const Question question = options.ask(*repository);
  const UnknownEntries unknown = findUnknown(*repository, question);
  if (!unknown.entries.empty()) throw std::invalid_argument(describe(unknown));
  const auto [path, hasStumbled] = search(options, *repository, question, limits);
  if (path) {
    auto picture =
        drawPath(weightsOf(*repository), sourceOf(*path, options, *repository, question), *path);
    addNotes(*repository, picture);
    options.output.write(renderPath(picture, options.form.format, options.output.colouring()));
    return ExitStatus::Found;
  }
  return hasStumbled ? explainAbsence(options, *repository, question, limits)
                     : answerAbsence(options, *repository, question, limits);
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
  options->limits.addTo(*path);
  path->add_flag_callback(
      "--no-explain", [options] { options->isExplained = false; },
      "Only say that there is no path, without explaining why");
  path->footer(
      "A search that a limit or Ctrl-C ends says what is proven by then: the weight that no path "
      "is\n"
      "below, and the least one of a plan that is known. An explanation has what time is left.\n"
      "Exit status: 0 a path was found, 1 there is none, 2 bad usage or input, 3 a limit was "
      "reached\n"
      "before it was known whether there is a path.\n"
      "Example: evopath path data/operators.json --question --format html --output path.html");
  path->callback([options, &action] { action = [options] { return runPath(*options); }; });
}

}  // namespace evopath
