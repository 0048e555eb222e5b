#pragma once

#include <memory>

#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/survey_state.hpp"

namespace tarn::evolution::pathfinder {

/// The search space of what a survey has met, as far as it can lie on a path: numbers its names,
/// versions and linked metamodels, also in the survey. Versions that failed are in it only if the
/// best is assumed of them.
std::unique_ptr<const SearchSpace> buildSearchSpace(SurveyState& met);

}  // namespace tarn::evolution::pathfinder
