#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// What each name does in a step, the last name first: the place of its hop, counted from one,
/// among those of the version that it leaves, or 0 for none. Compares as the combination's index
/// does.
using StepDigits = std::vector<std::uint32_t>;

/// The digits of a planned step between two selections. Of several equal hops the first decides:
/// the others lead to the same baselines.
StepDigits digitsOf(const SearchSpace& space, SelectionView before,
                    std::span<const PlannedHop> hops, SelectionView after);

/// Adds the hops that the digits stand for, one name after the other.
void addHops(const SearchSpace& space, SelectionView before, const StepDigits& digits,
             LockstepHop& hops);

}  // namespace tarn::evolution::pathfinder
