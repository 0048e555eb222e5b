// Plans over a dependency space and links what the plan holds. A selection that cannot be held is
// forbidden, and planned again.

#include "pathfinder/learning/selection_search.hpp"

#include <algorithm>
#include <utility>

#include "messages/trace.hpp"
#include "pathfinder/learning/learning_planner.hpp"
#include "pathfinder/learning/plan_linking.hpp"
#include "pathfinder/limits/search_watch.hpp"
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

  SelectionAnswer run() {
    const auto planner = LearningPlanner::create({space_, compatibility_, bounds_},
                                                 {dependencies_.target}, dependencies_.openStart());
    if (!planner) return {false};
    while (const auto plan = planner->plan()) {
      SelectionView impossible;
      if (auto path = carryOut(*plan, impossible)) return {true, std::move(path)};
      planner->forbidTogether(impossible);
    }
    traceValue("Exhausted search");
    return {};
  }

 private:
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
                                        const VersionsByName& to) {
  if (SearchWatch* watch = SearchWatch::current()) watch->enter(SearchProgress::Stage::Learning);
  try {
    const DependencySpace dependencies(host, from, to);
    if (!dependencies.hasEnds()) return {};
    return SelectionSearch(host, dependencies).run();
  } catch (const NotClosed&) {
    return {false};
  } catch (const NotLinkable&) {
    return {false};
  }
}

}  // namespace tarn::evolution::pathfinder
