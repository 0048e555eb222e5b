#pragma once

#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/survey_state.hpp"

namespace tarn::evolution::pathfinder {

/// Numbers what a survey has met, as far as it can lie on a path. `space` already holds the
/// descriptors and the hops that the drafts refer to.
void buildSearchSpace(SurveyDrafts& met, SearchSpace& space);

}  // namespace tarn::evolution::pathfinder
