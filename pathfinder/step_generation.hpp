#pragma once

#include <vector>

#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// `VersionRepository::getStepsFrom`.
std::vector<BaselineHop> generateSteps(VersionRepository& repository, const VersionBaseline& from,
                                       VersionRepository::Direction direction);

}  // namespace tarn::evolution::pathfinder
