#pragma once

#include <optional>
#include <vector>

#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// A path that a search found, and the element of the target list that its last baseline includes.
struct FoundPath {
  std::vector<BaselineHop> steps;  ///< empty when a source includes the target
  const VersionBaseline* target;
};

/// The search that defines the answer: takes the lightest baseline not yet visited, tries every
/// step that leaves it, and stops at the first baseline that includes a target. Among baselines of
/// equal weight it takes the one that was reached first.
std::optional<FoundPath> searchExhaustively(VersionRepository& repository,
                                            const std::vector<VersionBaseline>& sources,
                                            const std::vector<VersionBaseline>& targets,
                                            VersionRepository::Direction direction);

}  // namespace tarn::evolution::pathfinder
