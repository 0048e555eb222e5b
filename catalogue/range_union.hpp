#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pathfinder/version_id.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// Dependencies on several ranges of one name.
///
/// The path finder knows a range as what it hands to `VersionRepository::findMetamodels`, and asks
/// nothing else of it. So a union of ranges is a range of a text, which says what it consists of,
/// and catalogues answer for it: "any of [1.0.0, 2.0.0), 3.0.0, \"4.0-beta\"". No version of a
/// catalogue is a text that begins so.
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

/// Whether it is a union, of one range or more.
TARN_EVOLUTION_CATALOGUE_EXPORT bool isUnion(const pathfinder::VersionRange& range);

}  // namespace tarn::evolution::catalogue
