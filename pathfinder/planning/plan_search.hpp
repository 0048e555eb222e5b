#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/idle_steps.hpp"
#include "pathfinder/planning/planning_budget.hpp"

namespace tarn::evolution::pathfinder {

/// The best plans from any source of the space to any of the targets, but for those that begin with
/// an idle step; no value when there is no plan.
std::optional<BackwardPlan> planBackward(const PlanningGround& ground,
                                         const std::vector<VersionSelection>& targets,
                                         const PlanningBudget& budget = {});

/// The best plans that begin with an idle step and have a total of no more than `most`.
std::optional<BackwardPlan> planBackward(const PlanningGround& ground,
                                         const std::vector<VersionSelection>& targets,
                                         const IdleStep& first, std::uint64_t most,
                                         const PlanningBudget& budget = {});

}  // namespace tarn::evolution::pathfinder
