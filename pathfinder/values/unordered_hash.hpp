#pragma once

#include <cstddef>

#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// `VersionRepository::KeyHasherVersionBaselineUnordered`.
struct UnorderedHash {
  std::size_t operator()(const VersionBaseline& baseline) const noexcept;
};

}  // namespace tarn::evolution::pathfinder
