#pragma once

#include <cstddef>
#include <vector>

#include "catalogue/import/known_version.hpp"

namespace tarn::evolution::catalogue {

/// Gives text versions of one name that have no precedence equivalents, where there is room, so
/// that all versions are in their order: "14" stands for 14.0.0, and "1.2rc1" for a version
/// below 1.2.0 that no release is likely to have.
///
/// `versions` ascend; those that have an equivalent already keep it. Returns how many that begin
/// with numbers remain without one.
std::size_t placeTextVersions(std::vector<KnownVersion*>& versions);

}  // namespace tarn::evolution::catalogue
