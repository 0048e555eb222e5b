#pragma once

#include <vector>

#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// `VersionRepository::createTargetBaseline`.
std::vector<VersionBaseline> findTargetBaselines(VersionRepository& repository,
                                                 const VersionBaseline& baseline,
                                                 const LockstepHop& hops);

}  // namespace tarn::evolution::pathfinder
