#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::catalogue {

/// What the repository lists for a range of a metamodel.
inline std::vector<pathfinder::Metamodel> listAdmitted(pathfinder::VersionRepository& repository,
                                                       const std::u16string& name,
                                                       const pathfinder::VersionRange& range) {
  std::vector<pathfinder::Metamodel> result;
  repository.findMetamodels(name, range, result);
  return result;
}

/// Whether the version is among them.
inline bool isAdmitted(pathfinder::VersionRepository& repository, const std::u16string& name,
                       const pathfinder::VersionRange& range,
                       const pathfinder::VersionId& version) {
  const auto admitted = listAdmitted(repository, name, range);
  return std::any_of(admitted.begin(), admitted.end(),
                     [&](const auto& metamodel) { return metamodel.version == version; });
}

}  // namespace tarn::evolution::catalogue
