#pragma once

#include <optional>
#include <vector>

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/step_problem.hpp"

namespace tarn::evolution::pathfinder {

/// The best plans from any source of the space to any of the targets; no value when there is no
/// plan, and so no path.
std::optional<BackwardPlan> planBackward(const PlanningGround& ground,
                                         const std::vector<VersionSelection>& targets);

}  // namespace tarn::evolution::pathfinder
