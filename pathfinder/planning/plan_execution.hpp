#pragma once

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// Carries the best plans out over real baselines, in the order in which the exhaustive search
/// would have met them: the first way through is the path. Leaves the question unsettled when none
/// of the plans can be carried out.
SearchAnswer executePlan(const SearchQuestion& question, const SearchSpace& space,
                         const BackwardPlan& plan);

}  // namespace tarn::evolution::pathfinder
