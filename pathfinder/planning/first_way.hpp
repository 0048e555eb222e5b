#pragma once

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// Of the ways that best plans go, the one that comes first in the order of places, as a plan of
/// its own. For a space with one source, in which links bring nothing in and a selection of
/// versions tells which linked metamodels are meant: so that each way can be carried out, or none.
BackwardPlan firstWayOf(const SearchSpace& space, const BackwardPlan& plan);

}  // namespace tarn::evolution::pathfinder
