#pragma once

#include <cstddef>
#include <vector>

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/step_problem.hpp"

namespace tarn::evolution::pathfinder {

/// A first step from a source that is not regular, of one hop that could as well wait: what the
/// step is for is to link everything anew.
struct IdleStep {
  std::size_t source;
  NameIndex name;
  VersionIndex target;
  PlannedHop hop;

  bool operator==(const IdleStep&) const = default;
};

/// All of them.
std::vector<IdleStep> idleStepsOf(const PlanningGround& ground);

}  // namespace tarn::evolution::pathfinder
