#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/idle_steps.hpp"
#include "pathfinder/planning/step_problem.hpp"

namespace tarn::evolution::pathfinder {

/// How far planning may go.
struct PlanningBudget {
  /// Thrown when that is not far enough.
  struct Spent {};

  /// How many nodes may be looked at, which bounds the memory as well.
  std::uint64_t nodes = std::numeric_limits<std::uint64_t>::max();

  /// Whether the space holds every plan, so that what is proven in it may be told.
  bool isSpaceComplete = false;
};

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
