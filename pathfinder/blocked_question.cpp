// Both questions are asked of formulas over all that hops lead to, whether it leads to the target
// or not. Which names block one another: of one in which names can be left out (`BlockingNames`).
// What is nearest: of one whose ends are open and cost something. Once the least cost is known, so
// are the ends that all plans of that cost share; with these given, the least path is planned as
// ever.

#include "pathfinder/blocked_question.hpp"

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

VersionSelection anywhere(const DependencySpace& dependencies) {
  return VersionSelection(dependencies.space->names.size(), SearchSpace::none);
}

/// The plans whose ends cost the least.
class CheapestPlans {
 public:
  CheapestPlans(const DependencySpace& dependencies,
                const std::vector<BlockedQuestion::EndCost>& measures)
      : dependencies_(dependencies),
        compatibility_(*dependencies.space, dependencies.requirements),
        bounds_(computeVersionBounds(*dependencies.space, compatibility_)) {
    for (const BlockedQuestion::EndCost& measure : measures) addCosts(measure);
  }

  /// What all of them end with, by name; `none` where they differ. No value when there are none.
  std::optional<VersionSelection> commonEnds(
      const std::vector<VersionSelection>& impossible) const {
    const auto planner = plannerTo(anywhere(dependencies_), impossible);
    if (!planner) return std::nullopt;
    return planner->commonEnds();
  }

  /// A planner of those that end so; null when there are none.
  std::unique_ptr<LearningPlanner> plannerTo(
      const VersionSelection& target, const std::vector<VersionSelection>& impossible) const {
    auto planner = LearningPlanner::create({*dependencies_.space, compatibility_, bounds_},
                                           {target}, dependencies_, &dependencies_.start());
    for (const VersionSelection& selection : impossible) planner->forbidTogether(selection);
    for (const VersionIndex version : forbidden_) planner->forbidAtEnd({&version, 1});
    const bool isAnyLeft = std::all_of(costs_.begin(), costs_.end(), [&](const auto& costs) {
      return planner->keepCheapestEnds(costs);
    });
    return isAnyLeft ? std::move(planner) : nullptr;
  }

 private:
  void addCosts(const BlockedQuestion::EndCost& measure) {
    auto& costs = costs_.emplace_back();
    const auto& versions = dependencies_.space->versions;
    for (VersionIndex version = 0; version < versions.size(); ++version) {
      const auto cost = measure(*versions[version].descriptor);
      if (!cost) forbidden_.push_back(version);
      if (cost && *cost > 0) costs.push_back({version, *cost});
    }
  }

  const DependencySpace& dependencies_;
  const Compatibility compatibility_;
  const AllVersionBounds bounds_;
  std::vector<VersionIndex> forbidden_;
  std::vector<std::vector<LearningPlanner::EndCost>> costs_;  // by measure
};

/// Has a part of a question answered, which the application may turn out to answer otherwise than
/// could be foreseen when the question was posed.
template <class Answer>
auto asPosed(const SearchLimits& limits, const Answer& answer) {
  SearchWatch watch(limits);
  watch.enter(SearchProgress::Stage::Learning);
  try {
    return answer();
  } catch (const NotForDependencies&) {
    throw std::logic_error("BlockedQuestion: the application answers for one name with another");
  } catch (const NotLinkable&) {
    throw std::logic_error(
        "BlockedQuestion: the application has linked what no dependency asks for");
  }
}

class BlockedQuestionSearch final : public BlockedQuestion {
 public:
  BlockedQuestionSearch(VersionRepository& repository, const Selection& from, const Selection& to,
                        pathfinder::Direction direction)
      : access_(repository), dependencies_(access_, from, to, direction) {}

  /// Whether it is a question of this kind.
  bool isFit() const {
    if (!dependencies_.hasEnds()) return false;
    const auto network = networkOfAll(dependencies_, dependencies_.requirements);
    return network && !network->isCut;
  }

  bool isClosed() const noexcept override { return dependencies_.isClosed(); }

  std::optional<BlockingSet> findBlockingSet(const SearchLimits& limits) override {
    return asPosed(limits, [&] { return blockingSet(); });
  }

  std::optional<Nearest> findNearest(const std::vector<EndCost>& measures,
                                     const SearchLimits& limits) override {
    requireClosed();
    return asPosed(limits, [&] { return nearest(measures); });
  }

  std::optional<Selection> findNearestEnds(const std::vector<EndCost>& measures,
                                           const SearchLimits& limits) override {
    requireClosed();
    return asPosed(limits, [&] { return nearestEnds(measures); });
  }

 private:
  void requireClosed() const {
    if (!isClosed()) throw std::logic_error("BlockedQuestion: what is nearest is not closed");
  }

  std::optional<BlockingSet> blockingSet() {
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

  std::optional<Nearest> nearest(const std::vector<EndCost>& measures) {
    const CheapestPlans plans(dependencies_, measures);
    PlanLinking linking(access_, dependencies_);
    std::vector<VersionSelection> impossible;
    while (true) {
      const auto ends = plans.commonEnds(impossible);
      if (!ends) return std::nullopt;
      const auto plan = plans.plannerTo(*ends, impossible)->plan();
      std::vector<VersionIndex> conflict;
      if (auto path = linking.carryOut(*plan, conflict)) {
        return Nearest{std::move(path->steps), std::move(path->last)};
      }
      impossible.push_back(std::move(conflict));
    }
  }

  std::optional<Selection> nearestEnds(const std::vector<EndCost>& measures) const {
    const auto ends = CheapestPlans(dependencies_, measures).commonEnds({});
    if (!ends) return std::nullopt;
    Selection result;
    for (NameIndex name = 0; name < ends->size(); ++name) {
      if ((*ends)[name] == SearchSpace::none) continue;
      result.emplace(dependencies_.space->names[name].text,
                     dependencies_.space->versions[(*ends)[name]].descriptor->version);
    }
    return result;
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

BlockedQuestion::BlockedQuestion() = default;

BlockedQuestion::~BlockedQuestion() = default;

std::unique_ptr<BlockedQuestion> BlockedQuestion::pose(VersionRepository& repository,
                                                       const Selection& from, const Selection& to,
                                                       VersionRepository::Direction direction,
                                                       const SearchLimits& limits) {
  SearchWatch watch(limits);
  watch.enter(SearchProgress::Stage::Learning);
  try {
    auto question = std::make_unique<BlockedQuestionSearch>(repository, from, to,
                                                            pathfinder::Direction(direction));
    if (question->isFit()) return question;
  } catch (const NotForDependencies&) {  // NOLINT(bugprone-empty-catch)
  }
  return nullptr;
}

}  // namespace tarn::evolution::pathfinder
