#include <algorithm>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "attended_explanation.hpp"
#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/path_picture.hpp"
#include "catalogue/picture/path_plan.hpp"
#include "catalogue/text/display_text.hpp"
#include "catalogue/text/printed_text.hpp"
#include "command.hpp"
#include "condition_options.hpp"
#include "interruption.hpp"
#include "known_versions.hpp"
#include "limit_options.hpp"
#include "memory_advice.hpp"
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
  ConditionOptions conditions;
  PathFormatOption form;
  OutputOption output;
  LimitOptions limits;
  bool isExplained = true;
  bool trace = false;
  bool isBestKnownWanted = false;
};

/// The path finder's logger, and all levels that it writes on.
constexpr const char* traceChannel = "tarn::evolution::pathfinder";
constexpr unsigned traceLevels =
    static_cast<unsigned>(TraceLevel::Reasoning) | static_cast<unsigned>(TraceLevel::CacheStore);

/// A record's text, which tabulators indent, safe on a terminal.
std::string indented(const std::string& text) {
  const std::size_t tabulators = std::min(text.find_first_not_of('\t'), text.size());
  return std::string(2 * tabulators, ' ') + toVisible(text.substr(tabulators));
}

void traceToStandardError() {
  foundation::log::in_memory::addRecordSink(
      [](const foundation::log::in_memory::RecordView& record) {
        std::cerr << record.channel << " [" << record.severity << "] "
                  << indented(std::string(record.text)) << "\n";
      });
  foundation::log::in_memory::setEnabledLevels(traceChannel, traceLevels);
}

struct SearchResult {
  std::optional<std::vector<BaselineHop>> path = std::nullopt;
  bool hasStumbled = false;  ///< over a version that cannot be linked; then there may be a path

  /// What ended the search, if the path is only the best known by then.
  std::optional<SearchStopped> stopped = std::nullopt;
};

SearchResult search(const PathOptions& options, BrowsableRepository& repository,
                    const Question& question, const SearchLimits& limits) {
  const auto line = options.trace ? SearchMonitor::Line::Never : SearchMonitor::Line::OnTerminal;
  std::optional<std::vector<BaselineHop>> best;
  SearchLimits wanted = limits;
  if (options.isBestKnownWanted) {
    wanted.betterPath = [&best](const std::vector<BaselineHop>& path) { best = path; };
  }
  try {
    return {.path = searchAttended(
                wanted, SearchMonitor::Task::Search, line, [&](const SearchLimits& attended) {
                  return repository.findPath(question.from, question.to, attended);
                })};
  } catch (const SearchStopped& stopped) {
    if (!best) throw;
    return {.path = std::move(best), .stopped = stopped};
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

void writeExplanation(const Question& question, const Explanation& explanation,
                      const StepWeights& weights, const PathOptions& options) {
  const std::string text = written([&](std::ostream& out) {
    if (options.form.format == PathFormat::Json) {
      writeNoPathJson(question, explanation, weights, out);
    } else {
      writeExplanationText(explanation, weights, out);
    }
  });
  writeNoPath(text, options);
}

/// The bare answer, which was proven by the search itself.
ExitStatus tellAbsence(const PathOptions& options, const Question& question,
                       const std::string& text) {
  std::string answer = text + "\n";
  if (options.form.format == PathFormat::Json) {
    answer = written([&](std::ostream& out) { writeNoPathJson(question, out); });
  }
  writeNoPath(answer, options);
  return ExitStatus::NoPath;
}

ExitStatus explainAbsence(const PathOptions& options, BrowsableRepository& repository,
                          const Question& question, const SearchLimits& limits) {
  const Explanation explanation = explainAttended(repository, question, explanationBudget, limits);
  writeExplanation(question, explanation, weightsOf(repository), options);
  return statusOf(explanation);
}

/// For a search that has ended without a path and has not stumbled.
ExitStatus answerAbsence(const PathOptions& options, BrowsableRepository& repository,
                         const Question& question, const SearchLimits& limits) {
  if (!options.isExplained) return tellAbsence(options, question, "No path.");
  const char* const unexplained = "no path; interrupted before it was explained";
  throwIfInterrupted(unexplained);
  try {
    return explainAbsence(options, repository, question, limits);
  } catch (const SearchStopped&) {
    throwIfInterrupted(unexplained);
    return tellAbsence(options, question, "No path. A limit was reached before it was explained.");
  }
}

/// `leastProven`: of a path that is not proven least.
std::string render(const std::vector<BaselineHop>& path, const PathOptions& options,
                   BrowsableRepository& repository, const Question& question,
                   std::optional<std::uint64_t> leastProven = std::nullopt) {
  if (options.form.format == PathFormat::Json) {
    PathPlan plan = makePlan(repository, repository, question, path);
    plan.picture.leastProven = leastProven;
    return written([&](std::ostream& out) { writePlanJson(plan, out); });
  }
  // A path without steps does not tell what it begins at.
  const VersionBaseline source =
      path.empty() ? makePlan(repository, repository, question, path).start : path.front().from;
  auto picture = drawPath(weightsOf(repository), source, path);
  picture.leastProven = leastProven;
  addTies(repository, path, picture);
  addNotes(repository, picture);
  return renderPath(picture, options.form, options.output.colouring());
}

ExitStatus answer(const PathOptions& options, BrowsableRepository& repository,
                  const Question& question, const SearchLimits& limits) {
  const auto [path, hasStumbled, stopped] = search(options, repository, question, limits);
  if (stopped) {
    options.output.write(
        render(*path, options, repository, question, stopped->progress().leastProven));
    throw SearchStopped(*stopped);
  }
  if (path) {
    options.output.write(render(*path, options, repository, question));
    return ExitStatus::Found;
  }
  return hasStumbled ? explainAbsence(options, repository, question, limits)
                     : answerAbsence(options, repository, question, limits);
}

bool reaches(const VersionBaseline& baseline, const std::vector<PathGoal>& goals) {
  return std::all_of(goals.begin(), goals.end(), [&](const PathGoal& goal) {
    const auto held = baseline.metamodels.find(goal.name);
    return held != baseline.metamodels.end() &&
           std::find(goal.versions.begin(), goal.versions.end(), held->second->version) !=
               goal.versions.end();
  });
}

/// The question that a path under conditions is the answer to: its goals as they were reached.
Question answeredBy(const std::vector<BaselineHop>& path, const ConditionalQuestion& question,
                    BrowsableRepository& repository) {
  Question result{question.from, {}};
  const std::vector<VersionBaseline> ends = path.empty()
                                                ? repository.combine(question.from)
                                                : std::vector<VersionBaseline>{path.back().to};
  const auto end = std::find_if(ends.begin(), ends.end(), [&](const VersionBaseline& baseline) {
    return reaches(baseline, question.goals);
  });
  if (end == ends.end()) return result;
  for (const PathGoal& goal : question.goals) {
    result.to.emplace(goal.name, end->metamodels.at(goal.name)->version);
  }
  return result;
}

std::string renderAlternatives(BrowsableRepository& repository,
                               const std::vector<std::vector<BaselineHop>>& paths,
                               const PathOptions& options, const ConditionalQuestion& question) {
  const bool isJson = options.form.format == PathFormat::Json;
  std::string text;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (isJson) {
      text += i == 0 ? "[" : ",\n";
    } else {
      text += (i == 0 ? "Path " : "\nPath ") + std::to_string(i + 1) + "\n";
    }
    text += render(paths[i], options, repository, answeredBy(paths[i], question, repository));
    if (isJson && text.back() == '\n') text.pop_back();
  }
  return isJson ? text + "]\n" : text;
}

ExitStatus runConditional(const PathOptions& options, BrowsableRepository& repository,
                          const Question& asked, const ConditionalQuestion& question,
                          const SearchLimits& limits) {
  const std::size_t count = options.conditions.alternatives;
  if (options.isBestKnownWanted) {
    throw std::invalid_argument("--best-known: not for a path under conditions");
  }
  if (count > 1 && options.form.isPicture()) {
    throw std::invalid_argument("--alternatives: only as text or JSON");
  }
  const auto line = options.trace ? SearchMonitor::Line::Never : SearchMonitor::Line::OnTerminal;
  std::vector<std::vector<BaselineHop>> paths;
  SearchLimits wanted = limits;
  wanted.betterPath = [&paths](const std::vector<BaselineHop>& path) { paths.push_back(path); };
  const auto search = [&](const SearchLimits& attended) {
    return findAlternativePaths(repository, question.from, question.goals, question.conditions,
                                count, attended);
  };
  const auto writePaths = [&] {
    options.output.write(count > 1 ? renderAlternatives(repository, paths, options, question)
                                   : render(paths.front(), options, repository,
                                            answeredBy(paths.front(), question, repository)));
  };
  try {
    searchAttended(wanted, SearchMonitor::Task::Search, line, search);
  } catch (const SearchStopped&) {
    if (!paths.empty()) writePaths();
    throw;
  } catch (const ConflictingDependencies&) {
    return tellAbsence(options, asked, "No path: what it is to start from cannot be linked.");
  }
  if (paths.empty()) return tellAbsence(options, asked, "No path keeps to the conditions.");
  writePaths();
  return ExitStatus::Found;
}

ExitStatus runPath(const PathOptions& options) {
  options.form.expectTemplate();
  if (options.trace) traceToStandardError();
  const SearchLimits limits = options.limits.fromNow();
  const auto repository = openCatalogue(options.catalogue);
  const Question question = options.ask(*repository);
  if (const auto conditional = options.conditions.resolve(*repository, question)) {
    return adviseOnMemory(*repository, question, [&] {
      return runConditional(options, *repository, question, *conditional, limits);
    });
  }
  expectKnown(*repository, question);
  return adviseOnMemory(*repository, question,
                        [&] { return answer(options, *repository, question, limits); });
}

}  // namespace

void addPathCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<PathOptions>();
  CLI::App* path =
      program.add_subcommand("path", "Find the least-weight path between two selections");
  options->addTo(*path);
  options->conditions.addTo(*path);
  options->form.addTo(*path);
  options->output.addTo(*path);
  path->add_flag("--trace", options->trace, "Show the path finder's reasoning on standard error");
  options->limits.addTo(*path);
  path->add_flag(
      "--best-known", options->isBestKnownWanted,
      "When a limit or Ctrl-C ends the search, write the best path known by then, marked "
      "as not proven least");
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
