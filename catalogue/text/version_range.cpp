#include "catalogue/text/version_range.hpp"

#include <algorithm>
#include <vector>

#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;
using pathfinder::VersionRange;

std::optional<VersionId> findSingleVersion(const VersionRange& range) {
  if (isUnion(range)) return std::nullopt;
  if (!range.isSemVerRange()) return VersionId(range.getText());
  const pathfinder::SemVer& lower = range.getSemVerRange().lower;
  return range == VersionRange::singleVersion(lower) ? std::optional<VersionId>(lower)
                                                     : std::nullopt;
}

bool isReversed(const VersionRange& range) {
  if (isUnion(range)) {
    const auto pieces = piecesOf(range);
    return std::any_of(pieces.begin(), pieces.end(), isReversed);
  }
  return !findSingleVersion(range) && range.getSemVerRange().upper < range.getSemVerRange().lower;
}

bool admitsNothing(const VersionRange& range) {
  if (isUnion(range)) {
    const auto pieces = piecesOf(range);
    return std::all_of(pieces.begin(), pieces.end(), admitsNothing);
  }
  return !findSingleVersion(range) &&
         !(range.getSemVerRange().lower < range.getSemVerRange().upper);
}

std::string rangeText(const VersionRange& range) {
  if (isUnion(range)) {
    std::string text;
    for (const VersionRange& piece : piecesOf(range)) {
      text += (text.empty() ? "" : " or ") + rangeText(piece);
    }
    return text;
  }
  const auto single = findSingleVersion(range);
  return single ? textOf(*single) : textOf(range);
}

}  // namespace tarn::evolution::catalogue
