#include "pathfinder/planning/planning_budget.hpp"

#include <algorithm>

namespace tarn::evolution::pathfinder {

namespace {

/// How many steps a plan has that ends with one of these, as far as single names tell.
std::uint64_t fewestSteps(const PlanningGround& ground, const VersionSelection& target) {
  std::uint64_t steps = 0;
  for (const VersionIndex version : target) {
    if (version == SearchSpace::none) continue;
    steps = std::max<std::uint64_t>(steps, ground.bounds[version].hops);
  }
  return steps;
}

}  // namespace

std::uint64_t effortBesideLearning(const PlanningGround& ground,
                                   const std::vector<VersionSelection>& targets) {
  constexpr std::uint64_t least = 400 * nodeEffort;
  constexpr std::uint64_t perVersionAndStep = 20;
  std::uint64_t steps = 0;
  for (const VersionSelection& target : targets) {
    steps = std::max(steps, fewestSteps(ground, target));
  }
  return least + perVersionAndStep * ground.space.versions.size() * (steps + 1);
}

}  // namespace tarn::evolution::pathfinder
