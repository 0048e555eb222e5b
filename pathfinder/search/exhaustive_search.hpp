#pragma once

#include <cstdint>

#include "pathfinder/search/search_question.hpp"
#include "pathfinder/search/step_generation.hpp"

namespace tarn::evolution::pathfinder {

/// The search that defines the answer: takes the lightest baseline not yet visited, tries every
/// step that leaves it, and stops at the first baseline that includes a target. Among baselines of
/// equal weight it takes the one that was reached first.
///
/// Leaves the question unsettled when the steps out of the next baseline would take the number of
/// combinations tried past `budget`, where one in which many linked metamodels are combined counts
/// as several. Without a limit, settles every question that it can finish.
SearchAnswer searchExhaustively(const SearchQuestion& question,
                                std::uint64_t budget = unlimitedBudget);

}  // namespace tarn::evolution::pathfinder
