#pragma once

#include <optional>
#include <string>

#include "pathfinder/version_id.hpp"

/// Ranges as catalogues and messages write them.
namespace tarn::evolution::catalogue {

/// The version of a range that is of one version only (`VersionRange::singleVersion`), also of one
/// with the largest patch, whose upper bound has wrapped.
std::optional<pathfinder::VersionId> findSingleVersion(const pathfinder::VersionRange& range);

/// "1.0.0", "[1.0.0, 2.0.0)", "spring", or several of these with "or" between them.
std::string rangeText(const pathfinder::VersionRange& range);

}  // namespace tarn::evolution::catalogue
