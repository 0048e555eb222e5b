#include "pathfinder/path_search.hpp"

#include <ostream>
#include <utility>

#include "messages/scoped_event.hpp"
#include "messages/trace.hpp"
#include "pathfinder/learning/learning_search.hpp"
#include "pathfinder/learning/selection_search.hpp"
#include "pathfinder/limits/linking_budget.hpp"
#include "pathfinder/linking/selection_combination.hpp"
#include "pathfinder/planning/goal_directed_search.hpp"
#include "pathfinder/search/exhaustive_search.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::trace;
using diagnostics::TraceLevel;
using diagnostics::traceValue;

namespace {

void traceQuestion(const std::vector<VersionBaseline>& sources,
                   const std::vector<VersionBaseline>& targets, Direction direction) {
  traceValue("Finding path from one of:");
  for (const VersionBaseline& source : sources) traceValue(source);
  traceValue("TO one of:");
  for (const VersionBaseline& target : targets) traceValue(target);
  traceValue("End of list");
  trace(TraceLevel::Reasoning,
        [&](std::ostream& out) { out << "Direction is " << nameOf(direction); });
}

/// Asks one engine after the other until one settles the question.
SearchAnswer search(SearchQuestion question) {
  TriedBaselines tried;
  question.tried = &tried;
  SearchAnswer answer = searchExhaustively(question, combinationBudget);
  if (answer.verdict == SearchAnswer::Verdict::Unsettled)
    answer = searchGoalDirected(question, learningPlanner());
  if (answer.verdict == SearchAnswer::Verdict::Unsettled) answer = searchExhaustively(question);
  return answer;
}

}  // namespace

std::optional<std::vector<BaselineHop>> answerPathQuestion(SearchHost& host, PathCache& cache,
                                                           const QuestionBaselines& sources,
                                                           const QuestionBaselines& targets,
                                                           Direction direction,
                                                           std::span<const KnownMetamodel> known) {
  static const instrument::Handle& handle =
      instrument::controls.getHandle("VersionRepository::findPath");
  const diagnostics::ScopedEvent event(handle);
  traceQuestion(sources.list(), targets.list(), direction);
  if (auto cached = cache.find(sources.list(), targets.list())) return cached;
  SearchAnswer answer = search({host, sources.list(), targets.list(), direction, known});
  if (answer.verdict != SearchAnswer::Verdict::Found) return std::nullopt;
  if (!answer.steps.empty()) {
    cache.store(answer.steps, sources.take(*answer.source), targets.take(*answer.target));
  }
  return std::move(answer.steps);
}

namespace {

/// The baselines that the ends of a question stand for; no targets where there is no source.
struct Ends {
  Ends(RepositoryAccess& access, const SelectionQuestion& question)
      : combination(access, question.from.size() + question.to.size()),
        sources(combination.combine(question.from)) {
    if (!sources.empty()) targets = combination.combine(question.to);
  }

  SelectionCombination combination;
  std::vector<VersionBaseline> sources;
  std::vector<VersionBaseline> targets;
};

std::optional<Direction> directionBetween(RepositoryAccess& access, const Ends& ends) {
  if (ends.targets.empty()) return std::nullopt;
  return access.directionBetween(ends.sources.front(), ends.targets.front());
}

/// By way of all baselines that the selections stand for.
std::optional<std::vector<BaselineHop>> answerByBaselines(RepositoryAccess& access,
                                                          PathCache& cache,
                                                          const SelectionQuestion& question) {
  Ends ends(access, question);
  const auto own = directionBetween(access, ends);
  if (!own) return std::nullopt;
  return answerPathQuestion(access, cache, std::move(ends.sources), std::move(ends.targets),
                            question.direction.value_or(*own), ends.combination.known());
}

}  // namespace

std::optional<std::vector<BaselineHop>> answerSelectionQuestion(RepositoryAccess& access,
                                                                PathCache& cache,
                                                                const SelectionQuestion& question) {
  try {
    const LinkingBudget budget = linkingBudgetBesideDependencies(question.from.size());
    return answerByBaselines(access, cache, question);
  } catch (const LinkingBudget::Spent&) {  // NOLINT(bugprone-empty-catch)
  }
  SelectionAnswer answer = searchBetweenSelections(access, question, SelectionPlanning::ShortWays);
  if (answer.variantsToTry > 0) {
    try {
      const LinkingBudget budget(answer.variantsToTry);
      return answerByBaselines(access, cache, question);
    } catch (const LinkingBudget::Spent&) {
      answer = searchBetweenSelections(access, question, SelectionPlanning::ByLearning);
    }
  }
  if (!answer.isSettled) return answerByBaselines(access, cache, question);
  if (!answer.path) return std::nullopt;
  auto& [steps, source, target] = *answer.path;
  if (!steps.empty()) cache.store(steps, std::move(source), std::move(target));
  return std::move(steps);
}

std::optional<Direction> directionOfSelectionQuestion(RepositoryAccess& access,
                                                      const SelectionQuestion& question) {
  try {
    const LinkingBudget budget = linkingBudgetBesideDependencies(question.from.size());
    return directionBetween(access, Ends(access, question));
  } catch (const LinkingBudget::Spent&) {  // NOLINT(bugprone-empty-catch)
  }
  const SelectionDirection found = directionBetweenSelections(access, question);
  return found.isSettled ? found.direction : directionBetween(access, Ends(access, question));
}

}  // namespace tarn::evolution::pathfinder
