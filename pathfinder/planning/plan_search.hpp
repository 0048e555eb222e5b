#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/idle_steps.hpp"
#include "pathfinder/planning/planning_budget.hpp"

namespace tarn::evolution::pathfinder {

/// The best plans from any source of the space to any of the targets, but for those that begin with
/// an idle step; or, with `first`, those that begin with that one and have a total of no more than
/// `most`. No value when there is none.
std::optional<BackwardPlan> planBackward(
    const PlanningGround& ground, const std::vector<VersionSelection>& targets,
    const PlanningBudget& budget = {}, const std::optional<IdleStep>& first = std::nullopt,
    std::uint64_t most = std::numeric_limits<std::uint64_t>::max());

}  // namespace tarn::evolution::pathfinder
