#pragma once

#include <memory>
#include <vector>

#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// Links `root`, which has no links yet, in every consistent way: one linked metamodel for each
/// choice of dependencies that agree. The candidates of all dependencies are linked first, those of
/// a dependency whose name came before as well. Throws ConflictingDependencies when there is no
/// consistent choice.
std::vector<std::shared_ptr<LinkedMetamodel>> linkDependencies(
    VersionRepository& repository, const std::shared_ptr<LinkedMetamodel>& root);

}  // namespace tarn::evolution::pathfinder
