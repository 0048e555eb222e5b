#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pathfinder/version_id.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// Dependencies on several ranges of one name, and on ranges from or up to a pre-release.
///
/// The path finder knows a range as what it hands to `VersionRepository::findMetamodels`, and asks
/// nothing else of it. So what is no half-open range of semantic versions, and no single version,
/// is a range of a text, which says what it consists of, and catalogues answer for it:
/// "any of [1.0.0, 2.0.0-rc.1), 3.0.0, \"4.0-beta\"". No version of a catalogue is a text that
/// begins so.
namespace tarn::evolution::catalogue {

/// What the text of every union begins with.
constexpr std::u16string_view unionPrefix = u"any of ";

/// The union of ranges that are none themselves; of a single one, that one. Throws
/// std::invalid_argument when there is none.
TARN_EVOLUTION_CATALOGUE_EXPORT pathfinder::VersionRange unionOf(
    const std::vector<pathfinder::VersionRange>& ranges);

/// The ranges that a range consists of: itself, if it is no union.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<pathfinder::VersionRange> piecesOf(
    const pathfinder::VersionRange& range);

/// Whether it is a union.
TARN_EVOLUTION_CATALOGUE_EXPORT bool isUnion(const pathfinder::VersionRange& range);

/// What lies from one version up to but without another, by precedence.
struct VersionBounds {
  pathfinder::VersionId lower;
  pathfinder::VersionId upper;
};

/// The range between two versions, each of which is semantic or reads as a version with a
/// precedence (see `Precedence`); otherwise throws std::invalid_argument. That from a semantic
/// version to its next patch is `VersionRange::singleVersion` of the former, and admits no
/// pre-release of the latter.
TARN_EVOLUTION_CATALOGUE_EXPORT pathfinder::VersionRange rangeBetween(const VersionBounds& bounds);

/// The bounds of a range that is neither a union nor of a single version.
TARN_EVOLUTION_CATALOGUE_EXPORT std::optional<VersionBounds> boundsOf(
    const pathfinder::VersionRange& range);

}  // namespace tarn::evolution::catalogue
