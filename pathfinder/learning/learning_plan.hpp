#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/step_problem.hpp"

namespace tarn::evolution::pathfinder {

/// What planning by learning found out.
struct LearningOutcome {
  enum class Kind {
    Planned,
    NoPlan,      ///< there is none, proven
    NotForIt,    ///< the question is of a kind that has to be planned otherwise
    GivenUp,     ///< it was told not to go on
  };

  Kind kind = Kind::NotForIt;
  std::optional<BackwardPlan> plan = {};  ///< one plan only: the first of all in the order of paths
};

/// Plans by learning from refutations: finds the very plan that comes first among all that can be
/// carried out, or proves that there is none.
LearningOutcome planByLearning(const PlanningGround& ground,
                               const std::vector<VersionSelection>& targets,
                               const std::function<bool()>& mayGoOn = {});

}  // namespace tarn::evolution::pathfinder
