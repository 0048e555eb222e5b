#pragma once

#include "pathfinder/planning/second_planner.hpp"

namespace tarn::evolution::pathfinder {

/// Plans by learning (see `LearningPlanner`). A plan that cannot be carried out, because three or
/// more versions are in conflict of which every two agree, teaches that conflict, and is replaced
/// by the next best one. Finds the same path as the exhaustive search, or proves that there is
/// none.
///
/// Null in a build without learning.
const SecondPlanner* learningPlanner();

}  // namespace tarn::evolution::pathfinder
