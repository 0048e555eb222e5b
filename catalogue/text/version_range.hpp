#pragma once

#include <optional>
#include <string>

#include "catalogue/precedence.hpp"
#include "pathfinder/version_id.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// What ranges admit, and how catalogues and messages write them.
///
/// The range of one semantic version (`VersionRange::singleVersion`) ends before the next patch.
/// For the largest patch there is that end wraps to 0 and lies below the beginning: such a range
/// admits its version nevertheless, and is told here, nowhere else, from one that is reversed.
/// (Only SQL has to know it again, in store/store_removal.cpp.)
namespace tarn::evolution::catalogue {

/// The version of a range that is of one version only. A union of ranges is none.
TARN_EVOLUTION_CATALOGUE_EXPORT std::optional<pathfinder::VersionId> findSingleVersion(
    const pathfinder::VersionRange& range);

/// Whether it admits a version: one that it names, or one whose precedence, if there is any, lies
/// between its bounds or is that of the semantic version that it names.
TARN_EVOLUTION_CATALOGUE_EXPORT bool admits(const pathfinder::VersionRange& range,
                                            const pathfinder::VersionId& version,
                                            const std::optional<Precedence>& precedence);

/// Whether it, or a part of a union, ends before it begins, and so admits nothing.
bool isReversed(const pathfinder::VersionRange& range);

/// Whether no version can lie in it.
bool admitsNothing(const pathfinder::VersionRange& range);

/// "1.0.0", "[1.0.0, 2.0.0)", "spring", or several of these with "or" between them.
std::string rangeText(const pathfinder::VersionRange& range);

}  // namespace tarn::evolution::catalogue
