#pragma once

#include <vector>

#include "pathfinder/search/search_host.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// `VersionRepository::createTargetBaseline`.
std::vector<VersionBaseline> findTargetBaselines(SearchHost& host, const VersionBaseline& baseline,
                                                 const LockstepHop& hops);

}  // namespace tarn::evolution::pathfinder
