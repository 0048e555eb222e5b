// Both questions are asked of formulas over all that hops lead to, whether it leads to the target
// or not. Which names block one another: of one in which names can be left out (`BlockingNames`).
// What is nearest: of one whose ends are open and cost something. Once the least cost is known, so
// are the ends that all plans of that cost share; with these given, the least path is planned as
// ever.

#include "pathfinder/learning/blocked_question_search.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "pathfinder/learning/blocking_names.hpp"
#include "pathfinder/learning/learning_planner.hpp"
#include "pathfinder/learning/plan_linking.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/planning/version_bounds.hpp"
#include "pathfinder/repository_access.hpp"

namespace tarn::evolution::pathfinder {

namespace {

class BlockedQuestionSearch final : public BlockedQuestion {
 public:
  BlockedQuestionSearch(VersionRepository& repository, const Selection& from, const Selection& to,
                        Direction direction)
      : access_(repository), dependencies_(access_, from, to, direction) {}

  /// Whether it is a question of this kind.
  bool isFit() const {
    if (!dependencies_.hasEnds()) return false;
    const SearchSpace& space = *dependencies_.space;
    const AllVersionBounds bounds(space.versions.size(), VersionBounds{.isReachable = true});
    const Compatibility compatibility(space, dependencies_.requirements);
    return makePlanNetwork({space, compatibility, bounds}, {anywhere()}, &dependencies_)
        .has_value();
  }

  bool isClosed() const noexcept override { return dependencies_.isClosed(); }

  std::optional<BlockingSet> findBlockingSet(const SearchLimits& limits) override {
    const SearchWatch watch(limits);
    FreeVersions free(access_, dependencies_);
    BlockingNames names(dependencies_, free);
    if (names.canArrive(ChosenItems(dependencies_.space->names.size(), true))) return std::nullopt;
    SmallestConflict conflict(dependencies_.space->names.size(), names);
    BlockingSet result;
    try {
      conflict.find();
      for (const auto& versions : names.proof(conflict.best())) {
        result.exclusions.push_back(versionsByName(versions));
      }
    } catch (const SearchStopped& stopped) {
      result.stopped = stopped.reason();
    }
    result.isSmallest = conflict.isProven();
    result.isMinimal = conflict.isReduced() || conflict.isProven();
    for (NameIndex name = 0; name < conflict.best().size(); ++name) {
      if (conflict.best()[name]) result.names.push_back(dependencies_.space->names[name].text);
    }
    return result;
  }

  std::optional<Nearest> findNearest(const std::vector<EndCost>& measures,
                                     const SearchLimits& limits) override {
    if (!isClosed()) throw std::logic_error("BlockedQuestion::findNearest: not a closed question");
    const SearchWatch watch(limits);
    const SearchSpace& space = *dependencies_.space;
    const Compatibility compatibility(space, dependencies_.requirements);
    const AllVersionBounds bounds = computeVersionBounds(space, compatibility);
    const PlanningGround ground{space, compatibility, bounds};
    const Costs costs = costsBy(measures);
    PlanLinking linking(access_, dependencies_);
    std::vector<VersionSelection> impossible;
    while (true) {
      const auto open = plannerOfCheapest(ground, anywhere(), costs, impossible);
      if (!open) return std::nullopt;
      const auto planner = plannerOfCheapest(ground, open->commonEnds(), costs, impossible);
      const auto plan = planner->plan();
      SelectionView selection;
      if (auto path = linking.carryOut(*plan, selection)) {
        return Nearest{std::move(path->steps), std::move(path->last)};
      }
      impossible.emplace_back(selection.begin(), selection.end());
    }
  }

 private:
  struct Costs {
    std::vector<VersionIndex> forbidden;
    std::vector<std::vector<LearningPlanner::EndCost>> byMeasure;
  };

  VersionSelection anywhere() const {
    return VersionSelection(dependencies_.space->names.size(), SearchSpace::none);
  }

  Costs costsBy(const std::vector<EndCost>& measures) const {
    Costs costs;
    const auto& versions = dependencies_.space->versions;
    for (const EndCost& measure : measures) {
      auto& listed = costs.byMeasure.emplace_back();
      for (VersionIndex version = 0; version < versions.size(); ++version) {
        const auto cost = measure(*versions[version].descriptor);
        if (!cost) costs.forbidden.push_back(version);
        if (cost && *cost > 0) listed.push_back({version, *cost});
      }
    }
    return costs;
  }

  /// A planner of those plans that end at the lowest costs; null when there are none.
  std::unique_ptr<LearningPlanner> plannerOfCheapest(
      const PlanningGround& ground, const VersionSelection& target, const Costs& costs,
      const std::vector<VersionSelection>& impossible) const {
    auto planner = LearningPlanner::create(ground, {target}, &dependencies_);
    for (const VersionSelection& selection : impossible) planner->forbidTogether(selection);
    for (const VersionIndex version : costs.forbidden) planner->forbidAtEnd({&version, 1});
    const bool isAnyLeft =
        std::all_of(costs.byMeasure.begin(), costs.byMeasure.end(),
                    [&](const auto& measure) { return planner->keepCheapestEnds(measure); });
    return isAnyLeft ? std::move(planner) : nullptr;
  }

  std::map<std::u16string, VersionId> versionsByName(
      const std::vector<VersionIndex>& versions) const {
    std::map<std::u16string, VersionId> result;
    for (const VersionIndex index : versions) {
      const SearchSpace::Version& version = dependencies_.space->versions[index];
      result.emplace(dependencies_.space->names[version.name].text, version.descriptor->version);
    }
    return result;
  }

  RepositoryAccess access_;
  const DependencySpace dependencies_;
};

}  // namespace

std::unique_ptr<BlockedQuestion> poseBlockedQuestion(VersionRepository& repository,
                                                     const BlockedQuestion::Selection& from,
                                                     const BlockedQuestion::Selection& to,
                                                     Direction direction) {
  if (SearchWatch* watch = SearchWatch::current()) watch->enter(SearchProgress::Stage::Learning);
  try {
    auto question = std::make_unique<BlockedQuestionSearch>(repository, from, to, direction);
    if (question->isFit()) return question;
  } catch (const NotClosed&) {  // NOLINT(bugprone-empty-catch)
  }
  return nullptr;
}

}  // namespace tarn::evolution::pathfinder
