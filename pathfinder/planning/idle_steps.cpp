#include "pathfinder/planning/idle_steps.hpp"

#include <algorithm>

namespace tarn::evolution::pathfinder {

namespace {

/// Whether what a source holds can stand together as it is, with nothing to be brought in.
bool canStandTogether(const PlanningGround& ground, const VersionSelection& selection) {
  for (const VersionIndex version : selection) {
    const auto& neighbours = ground.compatibility.neighbours(ground.space.versions[version].name);
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
      const VersionIndex other = selection[neighbours[i]];
      if (!ground.compatibility.row(version, i).contains(ground.space.rankOf(other))) return false;
    }
  }
  return true;
}

/// Whether the step after an idle one, which there would have to be, does as well for the first.
bool needsNoIdleStep(const PlanningGround& ground, const VersionSelection& source) {
  return canStandTogether(ground, source) && !ground.space.isTarget(source);
}

}  // namespace

std::vector<IdleStep> idleStepsOf(const PlanningGround& ground) {
  const SearchSpace& space = ground.space;
  std::vector<IdleStep> result;
  for (std::size_t i = 0; i < space.sources.size(); ++i) {
    const VersionSelection& source = space.sources[i].selection;
    if (space.sources[i].isRegular || source.empty() || needsNoIdleStep(ground, source)) continue;
    for (NameIndex name = 0; name < source.size(); ++name) {
      for (const SearchSpace::Move& move : space.versions[source[name]].moves) {
        if (move.target == source[name]) continue;  // planned with the others
        const PlannedHop hop = move.expensive ? PlannedHop::Expensive : PlannedHop::Ordinary;
        const IdleStep step{i, name, move.target, hop};
        if (std::find(result.begin(), result.end(), step) == result.end()) result.push_back(step);
      }
    }
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
