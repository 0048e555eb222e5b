#pragma once

#include <optional>
#include <vector>

#include "pathfinder/path_cache.hpp"
#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// `VersionRepository::findPath` for lists of baselines: asks the cache, searches, and stores what
/// the search found.
std::optional<std::vector<BaselineHop>> answerPathQuestion(
    VersionRepository& repository, PathCache& cache, const std::vector<VersionBaseline>& sources,
    const std::vector<VersionBaseline>& targets, VersionRepository::Direction direction);

}  // namespace tarn::evolution::pathfinder
