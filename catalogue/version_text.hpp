#pragma once

#include <string>

#include "pathfinder/version_id.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// Versions as people write them. Everything here throws std::invalid_argument, with a reason to
/// show, for a text that is empty, not UTF-8 or holds a NUL.
namespace tarn::evolution::catalogue {

/// A semantic version where the text is one with numbers of at most 64 bits, otherwise a text
/// version; throws std::invalid_argument as well for a text that reads as the beginning of a union
/// (see `unionOf`).
TARN_EVOLUTION_CATALOGUE_EXPORT pathfinder::VersionId parseVersion(const std::string& utf8);

/// A semantic version; throws std::invalid_argument as well when the text is none, or one with a
/// component beyond 64 bits.
TARN_EVOLUTION_CATALOGUE_EXPORT pathfinder::SemVer parseSemVer(const std::string& utf8);

/// A metamodel name.
TARN_EVOLUTION_CATALOGUE_EXPORT std::u16string parseName(const std::string& utf8);

/// The range from `lower` up to but without `upper`, each of which may be a pre-release (see
/// `rangeBetween`); throws std::invalid_argument as well when one of them has no precedence, or
/// when the range is reversed.
TARN_EVOLUTION_CATALOGUE_EXPORT pathfinder::VersionRange parseRange(const std::string& lower,
                                                                    const std::string& upper);

}  // namespace tarn::evolution::catalogue
