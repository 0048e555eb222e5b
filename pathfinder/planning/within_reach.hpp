#pragma once

#include <functional>

#include "pathfinder/planning/space_survey.hpp"
#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// Tells whether a question has a path, without regard to anything that fails off it.
using ReachTest = std::function<SearchAnswer::Verdict(const SearchQuestion&)>;

/// Where there is no path, a search that tries everything has been at every baseline within reach
/// and has tried every step from there. Throws what such a search meets: what the application fails
/// at, a version that cannot be linked, a hop to a version that is not there; of several things one
/// that is nearest to the sources. False when the test cannot tell of one of them.
///
/// Asks the application, by the question's survey, for everything that hops and links lead to. The
/// time follows that; each version beyond the sources that something fails in takes a search more.
bool throwWhatIsWithinReach(const SearchQuestion& question, SpaceSurvey& survey,
                            const ReachTest& test);

}  // namespace tarn::evolution::pathfinder
