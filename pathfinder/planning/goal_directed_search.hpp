#pragma once

#include "pathfinder/planning/second_planner.hpp"
#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// The search that scales: plans backward over selections of versions, without looking at linked
/// metamodels, and carries the best plans out forward over real baselines, in the order in which
/// the exhaustive search would have met them. Finds the same path as that one does.
///
/// Asks the application once for each version that can lie on a path, and links just these. Only
/// where there is no path does it ask for everything within reach, and throw what fails there.
/// Leaves the question unsettled when a source holds a null pointer or something under another name
/// than its own, when the application answers for one name with another, or when no plan can be
/// carried out, not even one of `second`: planning looks at two versions at a time, and three can
/// be in conflict of which every two agree.
///
/// `second` plans what is too much for the budget of this search, if it is not null.
SearchAnswer searchGoalDirected(const SearchQuestion& question,
                                const SecondPlanner* second = nullptr);

}  // namespace tarn::evolution::pathfinder
