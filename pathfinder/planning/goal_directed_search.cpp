// Surveys, plans and, while the plan is dearer than what the survey is known to cover, surveys on.
// Then carries the best plan out. What an application failed at counts only if a plan that makes
// the most of it would come before the one that was found.

#include "pathfinder/planning/goal_directed_search.hpp"

#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "messages/trace.hpp"
#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/plan_execution.hpp"
#include "pathfinder/planning/plan_search.hpp"
#include "pathfinder/planning/space_survey.hpp"
#include "pathfinder/planning/version_bounds.hpp"
#include "pathfinder/search/hop_collection.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::traceValue;

namespace {

using Plan = std::optional<BackwardPlan>;

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
    survey_.begin();
    plan();
    if (!survey_.isFit()) return {SearchAnswer::Verdict::Unsettled};
    throwWhatTheAnswerDependsOn();
    if (!plan_) {
      reportLostHop();
      traceValue("Exhausted search");
      return {};
    }
    SearchAnswer answer = executePlan(question_, *space_, *plan_);
    if (answer.verdict == SearchAnswer::Verdict::Found) traceValue("Reached target");
    return answer;
  }

 private:
  using Failed = SpaceSurvey::Failed;

  std::optional<SearchAnswer> answerWithoutSteps() const {
    for (const VersionBaseline& source : question_.sources) {
      const VersionBaseline* target = question_.targetIn(source);
      if (target == nullptr) continue;
      question_.traceTrying(source);
      traceValue("Reached target");
      return SearchAnswer{SearchAnswer::Verdict::Found, {}, &source, target};
    }
    return std::nullopt;
  }

  void plan() {
    do {
      if (!survey_.isFit()) return;
      space_ = survey_.makeSpace();
      plan_ = planIn(*space_, space_->targets);
    } while (plan_ ? survey_.extendToCover(plan_->cost().total) : survey_.extend());
  }

  /// Throws what was met in a version with which there might be a plan, or a better one, if it had
  /// not failed. Versions that conflict can do no better, but may be why there is no plan.
  void throwWhatTheAnswerDependsOn() {
    const Failed failed = plan_ ? Failed::UnknownAssumedBest : Failed::AllAssumedBest;
    if (!survey_.anyFailed(failed)) return;
    const auto space = survey_.makeSpace(failed);
    const Plan best = planIn(*space, space->targets);
    if (!best || (plan_ && !comesFirst(*best, *plan_))) return;
    survey_.throwFailureOf(versionsOf(*best));
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

  /// Where there is no path, everything within reach has been tried: also what offers a hop to a
  /// version that is not there.
  void reportLostHop() const {
    if (!survey_.anyLosesHop()) return;
    const std::vector<VersionBaseline> anything(1);
    const SearchQuestion open{question_.host, question_.sources, anything, question_.direction};
    SpaceSurvey survey(open, SpaceSurvey::Scope::Everything);
    survey.begin();
    while (survey.isFit() && survey.extend()) {
    }
    if (!survey.isFit()) return;
    const auto space = survey.makeSpace();
    for (VersionIndex version = 0; version < space->versions.size(); ++version) {
      if (space->versions[version].losesHop && isWithinReach(*space, version)) {
        reportHopsOf(*space, version);
      }
    }
  }

  static bool isWithinReach(const SearchSpace& space, VersionIndex version) {
    VersionSelection target(space.names.size(), SearchSpace::none);
    target[space.versions[version].name] = version;
    return planIn(space, {target}).has_value();
  }

  void reportHopsOf(const SearchSpace& space, VersionIndex version) const {
    const SearchSpace::Version& losing = space.versions[version];
    HopChoices choices;
    collectHops(question_.host, question_.direction, space.names[losing.name].text,
                *losing.linked->front(), choices);
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
