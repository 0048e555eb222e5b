// Surveys, plans and, while the plan is dearer than what the survey is known to cover, surveys on.
// Then carries the best plan out. What an application failed at counts if a plan that makes the
// most of it would come before the one that was found; and where there is none, if a search that
// tries everything would have met it.

#include "pathfinder/planning/goal_directed_search.hpp"

#include <memory>
#include <optional>
#include <vector>

#include "messages/trace.hpp"
#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/plan_execution.hpp"
#include "pathfinder/planning/plan_search.hpp"
#include "pathfinder/planning/space_survey.hpp"
#include "pathfinder/planning/version_bounds.hpp"
#include "pathfinder/planning/within_reach.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::traceValue;

namespace {

using Plan = std::optional<BackwardPlan>;
using Verdict = SearchAnswer::Verdict;

Plan planIn(const SearchSpace& space, const std::vector<VersionSelection>& targets) {
  const Compatibility compatibility(space);
  const AllVersionBounds bounds = computeVersionBounds(space, compatibility);
  return planBackward({space, compatibility, bounds}, targets);
}

class GoalDirectedSearch {
 public:
  explicit GoalDirectedSearch(const SearchQuestion& question)
      : question_(question), survey_(question) {}

  SearchAnswer run() {
    if (auto answer = answerWithoutSteps()) return *std::move(answer);
    plan();
    if (!survey_.isFit()) return {Verdict::Unsettled};
    if (!plan_) return answerWithoutPlan();
    throwWhatTheAnswerDependsOn();
    SearchAnswer answer = executePlan(question_, *space_, *plan_);
    if (answer.verdict == Verdict::Found) traceValue("Reached target");
    return answer;
  }

  /// Whether there is a path, when some step has to be taken and whatever fails is left out.
  Verdict reach() {
    plan();
    if (!survey_.isFit()) return Verdict::Unsettled;
    return plan_ ? executePlan(question_, *space_, *plan_).verdict : Verdict::NoPath;
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
      space_ = survey_.makeSpace();
      plan_ = planIn(*space_, space_->targets);
    } while (plan_ ? survey_.extendToCover(plan_->cost().total) : survey_.extend());
  }

  SearchAnswer answerWithoutPlan() const {
    const auto reach = [](const SearchQuestion& question) {
      return GoalDirectedSearch(question).reach();
    };
    if (!throwWhatIsWithinReach(question_, reach)) return {Verdict::Unsettled};
    traceValue("Exhausted search");
    return {};
  }

  /// Throws what was met in a version with which there might be a better plan if it had not failed.
  void throwWhatTheAnswerDependsOn() {
    if (!survey_.anyFailed(Failed::AssumedBest)) return;
    const auto space = survey_.makeSpace(Failed::AssumedBest);
    const Plan best = planIn(*space, space->targets);
    if (best && comesFirst(*best, *plan_)) survey_.throwFailureOf(versionsOf(*best));
  }

  static bool comesFirst(const BackwardPlan& left, const BackwardPlan& right) {
    const std::vector<std::uint64_t> weights = left.weights();
    const std::vector<std::uint64_t> others = right.weights();
    return order(left.chains(), {left.cost().total, WeightChains::empty, weights},
                 {right.cost().total, WeightChains::empty, others}) < 0;
  }

  /// The versions that best plans hold.
  static std::vector<VersionIndex> versionsOf(const BackwardPlan& plan) {
    std::vector<VersionIndex> versions;
    for (const SelectionIndex selection : plan.bestSelections()) {
      const SelectionView held = plan.selections()[selection];
      versions.insert(versions.end(), held.begin(), held.end());
    }
    return versions;
  }

  const SearchQuestion& question_;
  SpaceSurvey survey_;
  std::unique_ptr<const SearchSpace> space_;
  Plan plan_;
};

}  // namespace

SearchAnswer searchGoalDirected(const SearchQuestion& question) {
  return GoalDirectedSearch(question).run();
}

}  // namespace tarn::evolution::pathfinder
