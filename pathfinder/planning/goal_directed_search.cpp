// Surveys, plans and, while the plan is dearer than what the survey is known to cover, surveys on.
// Then carries the best plan out. What an application failed at counts if a plan that makes the
// most of it would come before the one that was found; and where there is none, if a search that
// tries everything would have met it.

#include "pathfinder/planning/goal_directed_search.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "messages/trace.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/plan_execution.hpp"
#include "pathfinder/planning/plan_search.hpp"
#include "pathfinder/planning/space_survey.hpp"
#include "pathfinder/planning/version_bounds.hpp"
#include "pathfinder/planning/within_reach.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::traceValue;

namespace {

using Verdict = SearchAnswer::Verdict;

/// The best plans of a space, of one cost: those without an idle step, and those that begin with
/// each of them.
using Plans = std::vector<BackwardPlan>;

void offer(Plans& plans, std::optional<BackwardPlan>&& plan) {
  if (!plan || (!plans.empty() && comesFirst(plans.front(), *plan))) return;
  if (!plans.empty() && comesFirst(*plan, plans.front())) plans.clear();
  plans.push_back(*std::move(plan));
}

Plans planAllBackward(const PlanningGround& ground, const PlanningBudget& budget) {
  Plans plans;
  offer(plans, planBackward(ground, ground.space.targets, budget));
  for (const IdleStep& step : idleStepsOf(ground)) {
    const std::uint64_t most =
        plans.empty() ? std::numeric_limits<std::uint64_t>::max() : plans.front().cost().total;
    offer(plans, planBackward(ground, ground.space.targets, budget, step, most));
  }
  return plans;
}

/// What best plans hold, of the versions with unknown hops those only that a step leaves.
std::vector<VersionIndex> versionsInUse(const SearchSpace& space, const BackwardPlan& plan) {
  std::vector<VersionIndex> result;
  const auto addLeft = [&](SelectionView selection, PlannedSteps steps) {
    plan.visit(steps, [&](std::span<const PlannedHop> hops, SelectionIndex) {
      for (NameIndex name = 0; name < hops.size(); ++name) {
        if (hops[name] != PlannedHop::None) result.push_back(selection[name]);
      }
    });
  };
  for (std::size_t source = 0; source < space.sources.size(); ++source) {
    if (!plan.isBestFromIrregular(source)) continue;
    addLeft(space.sources[source].selection, plan.stepsFromIrregular(source));
  }
  for (const SelectionIndex index : plan.bestSelections()) {
    const SelectionView selection = plan.selections()[index];
    std::copy_if(selection.begin(), selection.end(), std::back_inserter(result),
                 [&](VersionIndex version) { return !space.hasUnknownHops(version); });
    addLeft(selection, plan.stepsFrom(index));
  }
  return result;
}

/// A search space with all that planning needs.
struct OpenGround {
  explicit OpenGround(std::unique_ptr<const SearchSpace> made)
      : space(std::move(made)),
        compatibility(*space),
        bounds(computeVersionBounds(*space, compatibility)) {}

  PlanningGround view() const { return {*space, compatibility, bounds}; }

  const std::unique_ptr<const SearchSpace> space;
  const Compatibility compatibility;
  const AllVersionBounds bounds;
};

class GoalDirectedSearch {
 public:
  GoalDirectedSearch(const SearchQuestion& question, const SecondPlanner* second)
      : question_(question), second_(second), survey_(question) {}

  SearchAnswer run() {
    if (auto answer = answerWithoutSteps()) return *std::move(answer);
    plan();
    if (!survey_.isFit()) return {Verdict::Unsettled};
    throwWhatTheAnswerDependsOn();
    if (plans_.empty()) return answerWithoutPlan();
    SearchAnswer answer = execute();
    if (answer.verdict == Verdict::Unsettled) answer = executeBySecond();
    if (answer.verdict == Verdict::NoPath) return answerWithoutPlan();
    if (answer.verdict == Verdict::Found) traceValue("Reached target");
    return answer;
  }

  /// Whether there is a path, when some step has to be taken and whatever fails is left out.
  Verdict reach() {
    plan();
    if (!survey_.isFit()) return Verdict::Unsettled;
    if (plans_.empty()) return Verdict::NoPath;
    const Verdict verdict = execute().verdict;
    return verdict == Verdict::Unsettled ? executeBySecond().verdict : verdict;
  }

 private:
  using Failed = SpaceSurvey::Failed;

  std::optional<SearchAnswer> answerWithoutSteps() const {
    for (const VersionBaseline& source : question_.sources) {
      const VersionBaseline* target = question_.targetIn(source);
      if (target == nullptr) continue;
      question_.traceTrying(source);
      traceValue("Reached target");
      return SearchAnswer{Verdict::Found, {}, &source, target};
    }
    return std::nullopt;
  }

  void plan() {
    survey_.begin();
    do {
      if (!survey_.isFit()) return;
      ground_.emplace(survey_.makeSpace());
      plans_ = planIn(*ground_);
    } while (plans_.empty() ? survey_.extend()
                            : survey_.extendToCover(plans_.front().cost().total));
  }

  /// Plans backward as far as the budget goes, and then by the second planner.
  Plans planIn(const OpenGround& ground) const {
    const PlanningGround view = ground.view();
    const bool isComplete = survey_.isOver();
    try {
      PlanningBudget budget{.isSpaceComplete = isComplete};
      if (second_ != nullptr) budget.effort = effortBesideLearning(view, view.space.targets);
      return planAllBackward(view, budget);
    } catch (const PlanningBudget::Spent&) {
      SecondPlanner::Answer answer = second_->plan(view, pathTeller(question_, *ground.space));
      if (!answer.isPlanned) return planAllBackward(view, {.isSpaceComplete = isComplete});
      Plans plans;
      offer(plans, std::move(answer.plan));
      return plans;
    }
  }

  /// The first path in the order of sources and steps that some plan leads to.
  SearchAnswer execute() const {
    SearchAnswer first{Verdict::Unsettled};
    for (const BackwardPlan& plan : plans_) {
      SearchAnswer answer = executePlan(question_, *ground_->space, plan);
      if (answer.verdict != Verdict::Found) continue;
      if (first.verdict != Verdict::Found || beginsBefore(answer, first)) first = std::move(answer);
    }
    return first;
  }

  /// When no plan can be carried out: some versions are in conflict of which every two are not.
  SearchAnswer executeBySecond() {
    if (second_ == nullptr) return {Verdict::Unsettled};
    while (survey_.extend()) continue;
    if (!survey_.isFit()) return {Verdict::Unsettled};
    ground_.emplace(survey_.makeSpace());
    return second_->search(question_, ground_->view()).value_or(SearchAnswer{Verdict::Unsettled});
  }

  bool beginsBefore(const SearchAnswer& left, const SearchAnswer& right) const {
    const std::size_t source = placeOf(*left.source);
    if (left.source != right.source) return source < placeOf(*right.source);
    const VersionSelection& selection = ground_->space->sources[source].selection;
    for (auto name = static_cast<NameIndex>(selection.size()); name-- > 0;) {
      const std::size_t place = placeOfHop(name, selection[name], left.steps.front());
      const std::size_t other = placeOfHop(name, selection[name], right.steps.front());
      if (place != other) return place < other;
    }
    return false;
  }

  std::size_t placeOf(const VersionBaseline& source) const {
    std::size_t place = 0;
    while (&question_.sources[place] != &source) ++place;
    return place;
  }

  /// The place, counted from one, of the hop that a name takes among those of its version; 0 for
  /// none.
  std::size_t placeOfHop(NameIndex name, VersionIndex version, const BaselineHop& step) const {
    const auto taken = step.hops.find(ground_->space->names[name].text);
    if (taken == step.hops.end()) return 0;
    const auto& hops = ground_->space->versions[version].hops;
    // Hops of other weights are equal, too.
    const auto place = std::find_if(hops.begin(), hops.end(), [&](const Hop& hop) {
      return hop == taken->second && hop.expensive == taken->second.expensive;
    });
    return static_cast<std::size_t>(place - hops.begin()) + 1;
  }

  SearchAnswer answerWithoutPlan() {
    const SearchWatch::Aside aside;
    const auto reach = [this](const SearchQuestion& question) {
      return GoalDirectedSearch(question, second_).reach();
    };
    if (!throwWhatIsWithinReach(question_, survey_, reach)) return {Verdict::Unsettled};
    traceValue("Exhausted search");
    return {};
  }

  /// Throws what the application failed at in a version with which there might be a plan, a better
  /// one, or one as good that a place puts first, if it had not failed.
  void throwWhatTheAnswerDependsOn() {
    if (!survey_.anyFailed()) return;
    const SearchWatch::Aside aside;
    const OpenGround ground(survey_.makeSpace(Failed::AssumedBest));
    const Plans best = planIn(ground);
    if (best.empty()) return;
    const bool isBetter = plans_.empty() || comesFirst(best.front(), plans_.front());
    for (const BackwardPlan& plan : best) {
      survey_.throwFailureOf(isBetter ? plan.bestVersions() : versionsInUse(*ground.space, plan));
    }
  }

  const SearchQuestion& question_;
  const SecondPlanner* const second_;
  SpaceSurvey survey_;
  std::optional<OpenGround> ground_;
  Plans plans_;
};

}  // namespace

SearchAnswer searchGoalDirected(const SearchQuestion& question, const SecondPlanner* second) {
  if (SearchWatch* watch = SearchWatch::current()) {
    watch->enter(SearchProgress::Stage::GoalDirected);
  }
  return GoalDirectedSearch(question, second).run();
}

}  // namespace tarn::evolution::pathfinder
