#pragma once

#include <functional>

#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// Tells whether a question has a path, without regard to anything that fails off it.
using ReachTest = std::function<SearchAnswer::Verdict(const SearchQuestion&)>;

/// Where there is no path, a search that tries everything has been at every baseline within reach
/// and has tried every step from there. Throws what such a search meets: what the application fails
/// at, a version that cannot be linked, a hop to a version that is not there; of several things one
/// that is nearest to the sources. False when the test cannot tell of one of them.
///
/// Asks the application for everything that hops and links lead to; the time follows that, and
/// takes one more search for each thing that fails beyond what the versions by themselves reach.
bool throwWhatIsWithinReach(const SearchQuestion& question, const ReachTest& test);

}  // namespace tarn::evolution::pathfinder
