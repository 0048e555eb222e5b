#pragma once

#include <cstddef>
#include <vector>

#include "catalogue/import/known_version.hpp"

namespace tarn::evolution::catalogue {

/// Gives text versions of one name equivalents, where there is room, so that all versions are in
/// their order among the semantic ones: "14" stands for 14.0.0, and a pre-release of 1.2.0 for a
/// version below 1.2.0 that no release is likely to have.
///
/// `versions` ascend; those that have an equivalent already keep it. Returns how many that begin
/// with numbers remain without one.
std::size_t placeTextVersions(std::vector<KnownVersion*>& versions);

}  // namespace tarn::evolution::catalogue
