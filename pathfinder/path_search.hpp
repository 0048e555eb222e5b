#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "pathfinder/path_cache.hpp"
#include "pathfinder/search_question.hpp"
#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// How many combinations of hops the exhaustive search may try before the goal-directed search
/// takes over. Questions that take no more are settled as cheaply as they can be; beyond, the
/// number of combinations grows exponentially with the number of metamodels.
inline constexpr std::uint64_t combinationBudget = 2000;

/// `VersionRepository::findPath` for lists of baselines: asks the cache, searches, and stores what
/// the search found.
std::optional<std::vector<BaselineHop>> answerPathQuestion(
    VersionRepository& repository, PathCache& cache, const std::vector<VersionBaseline>& sources,
    const std::vector<VersionBaseline>& targets, VersionRepository::Direction direction,
    std::vector<KnownMetamodel> known = {});

}  // namespace tarn::evolution::pathfinder
