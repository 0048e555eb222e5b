#pragma once

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/second_planner.hpp"
#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// Carries the best plans out over real baselines, in the order in which the exhaustive search
/// would have met them: the first way through is the path. Leaves the question unsettled when none
/// of the plans can be carried out.
SearchAnswer executePlan(const SearchQuestion& question, const SearchSpace& space,
                         const BackwardPlan& plan);

/// Carries plans out that are met on the way, and tells the host of the paths; empty if the host
/// does not want that (see `SearchLimits::betterPath`). Refers to question and space.
PlanMet pathTeller(const SearchQuestion& question, const SearchSpace& space);

}  // namespace tarn::evolution::pathfinder
