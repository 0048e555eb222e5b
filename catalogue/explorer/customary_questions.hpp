#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"

namespace tarn::evolution::catalogue {

/// What people ask first of a metamodel: how far its oldest version can be brought.
struct CustomaryQuestion {
  std::u16string name;
  pathfinder::VersionId oldest;               ///< that a hop leads up from
  std::vector<pathfinder::VersionId> newest;  ///< that hops up lead to from there, newest first
};

/// That of a metamodel, with so many newest versions at most, by its hops alone; none where no hop
/// leads up. Versions stand numbered as in `NumberedVersions`.
std::optional<CustomaryQuestion> findCustomaryQuestion(BrowsableRepository& repository,
                                                       const std::u16string& name,
                                                       std::size_t mostTargets);

}  // namespace tarn::evolution::catalogue
