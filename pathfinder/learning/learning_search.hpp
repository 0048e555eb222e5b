#pragma once

#include <optional>

#include "pathfinder/planning/step_problem.hpp"
#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// Plans by learning and carries the plan out. A plan that cannot be carried out, because three or
/// more versions are in conflict of which every two agree, teaches that conflict, and is replaced
/// by the next best one. Finds the same path as the exhaustive search, or proves that there is
/// none.
///
/// No value for a question that has to be planned otherwise (see `LearningPlanner`).
std::optional<SearchAnswer> searchByLearning(const SearchQuestion& question,
                                             const PlanningGround& ground);

}  // namespace tarn::evolution::pathfinder
