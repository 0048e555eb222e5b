// Plans over a dependency space and links what the plan holds. A selection that cannot be held is
// forbidden, and planned again.

#include "pathfinder/learning/selection_search.hpp"

#include <algorithm>
#include <utility>

#include "messages/trace.hpp"
#include "pathfinder/learning/learning_planner.hpp"
#include "pathfinder/learning/plan_linking.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/planning/first_way.hpp"
#include "pathfinder/planning/plan_search.hpp"
#include "pathfinder/planning/version_bounds.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::traceValue;

namespace {

class SelectionSearch {
 public:
  SelectionSearch(SelectionHost& host, const DependencySpace& dependencies)
      : dependencies_(dependencies),
        space_(*dependencies.space),
        compatibility_(space_, dependencies.requirements),
        bounds_(computeVersionBounds(space_, compatibility_)),
        linking_(host, dependencies) {}

  SelectionAnswer run(SelectionPlanning planning) {
    SelectionView impossible;
    if (planning == SelectionPlanning::BackwardFirst) {
      const auto plan = planBackwardFromOnlySource();
      auto path = plan ? carryOut(*plan, impossible) : std::nullopt;
      if (path) return {true, std::move(path)};
    }
    const auto planner =
        LearningPlanner::create({space_, compatibility_, bounds_}, {dependencies_.target},
                                dependencies_, dependencies_.openStart());
    if (!planner) return {false};
    linking_.requireNoMoreLinks();
    planner->tellPlans(pathTeller());
    while (const auto plan = planner->plan()) {
      if (auto path = carryOut(*plan, impossible)) return {true, std::move(path)};
      planner->forbidTogether(impossible);
    }
    traceValue("Exhausted search");
    return {};
  }

 private:
  /// The best plan, as far as it takes little to find it: a long way between few names, above all,
  /// whose steps the search that learns would all have at once. No value when there may be another.
  std::optional<BackwardPlan> planBackwardFromOnlySource() const {
    const bool mayBringIn =
        std::any_of(space_.names.begin(), space_.names.end(),
                    [](const auto& name) { return name.absent != SearchSpace::none; });
    if (mayBringIn || dependencies_.openStart() != nullptr || space_.sources.empty()) {
      return std::nullopt;
    }
    try {
      const auto plan = planBackward({space_, compatibility_, bounds_}, {dependencies_.target},
                                     {.nodes = 5000 + 10 * std::uint64_t{space_.versions.size()}});
      if (plan) return firstWayOf(space_, *plan);
    } catch (const PlanningBudget::Spent&) {  // NOLINT(bugprone-empty-catch)
    }
    return std::nullopt;
  }

  /// As for a search between baselines.
  PlanMet pathTeller() {
    SearchWatch* const watch = SearchWatch::current();
    if (watch == nullptr || !watch->wantsPaths()) return {};
    return [this, watch](const BackwardPlan& plan) {
      return watch->tellPath([&]() -> std::optional<std::vector<BaselineHop>> {
        SelectionView impossible;
        auto path = linking_.carryOut(plan, impossible);
        if (!path) return std::nullopt;
        return std::move(path->steps);
      });
    };
  }

  std::optional<SelectionPath> carryOut(const BackwardPlan& plan, SelectionView& impossible) {
    auto path = linking_.carryOut(plan, impossible);
    if (!path) return std::nullopt;
    traceValue("Reached target");
    VersionBaseline target = targetIn(path->last);
    return SelectionPath{std::move(path->steps), std::move(path->first), std::move(target)};
  }

  /// What the baseline that was linked last holds of the target.
  VersionBaseline targetIn(const VersionBaseline& last) const {
    VersionBaseline target;
    for (NameIndex name = 0; name < dependencies_.target.size(); ++name) {
      if (dependencies_.target[name] == SearchSpace::none) continue;
      target.tryEmplace(last.metamodels.at(space_.names[name].text));
    }
    return target;
  }

  const DependencySpace& dependencies_;
  const SearchSpace& space_;
  const Compatibility compatibility_;
  const AllVersionBounds bounds_;
  PlanLinking linking_;
};

}  // namespace

SelectionAnswer searchBetweenSelections(SelectionHost& host, const VersionsByName& from,
                                        const VersionsByName& to, SelectionPlanning planning) {
  if (SearchWatch* watch = SearchWatch::current()) watch->enter(SearchProgress::Stage::Learning);
  try {
    const DependencySpace dependencies(host, from, to);
    if (!dependencies.hasEnds()) return {};
    return SelectionSearch(host, dependencies).run(planning);
  } catch (const NotForDependencies&) {
    return {false};
  } catch (const NotLinkable&) {
    return {false};
  } catch (const LearningPlanner::Undecided&) {
    return {false};
  }
}

}  // namespace tarn::evolution::pathfinder
