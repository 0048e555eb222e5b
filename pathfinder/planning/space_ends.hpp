#pragma once

#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/survey_state.hpp"

namespace tarn::evolution::pathfinder {

/// Adds to a space that is complete but for them the sources and the targets of its question, as
/// selections of its versions: of a source that the space does not hold, an empty one; of a target,
/// none.
void addEnds(const SurveyState& met, SearchSpace& space);

}  // namespace tarn::evolution::pathfinder
