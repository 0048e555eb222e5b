#include "pathfinder/planning/planning_budget.hpp"

#include <algorithm>

namespace tarn::evolution::pathfinder {

std::uint64_t hopsBefore(const PlanningGround& ground, const VersionSelection& target) {
  std::uint64_t hops = 0;
  for (const VersionIndex version : target) {
    if (version == SearchSpace::none) continue;
    hops = std::max<std::uint64_t>(hops, ground.bounds[version].hops);
  }
  return hops;
}

std::uint64_t effortBesideLearning(const PlanningGround& ground,
                                   const std::vector<VersionSelection>& targets) {
  constexpr std::uint64_t least = 800 * nodeEffort;
  constexpr std::uint64_t perVersionAndStep = 20;
  std::uint64_t steps = 0;
  for (const VersionSelection& target : targets) {
    steps = std::max(steps, hopsBefore(ground, target));
  }
  return least + perVersionAndStep * ground.space.versions.size() * (steps + 1);
}

}  // namespace tarn::evolution::pathfinder
