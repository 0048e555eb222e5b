#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// `VersionRepository::combine` for a selection of versions.
std::vector<VersionBaseline> combineVersions(
    VersionRepository& repository, const std::unordered_map<std::u16string, VersionId>& selection);

/// One entry of a selection of descriptors. Refers to the selection.
struct SelectedMetamodel {
  const std::u16string* name;
  const Metamodel* metamodel;
};

/// `VersionRepository::combine` for a selection of descriptors, linked in the order given.
std::vector<VersionBaseline> combineMetamodels(VersionRepository& repository,
                                               const std::vector<SelectedMetamodel>& selection);

}  // namespace tarn::evolution::pathfinder
