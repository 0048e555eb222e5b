#include "catalogue/range_text.hpp"

#include "catalogue/printed_text.hpp"
#include "catalogue/range_union.hpp"

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
