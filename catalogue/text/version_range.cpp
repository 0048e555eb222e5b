#include "catalogue/text/version_range.hpp"

#include <algorithm>
#include <vector>

#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;
using pathfinder::VersionRange;

std::optional<VersionId> findSingleVersion(const VersionRange& range) {
  if (isUnion(range) || boundsOf(range)) return std::nullopt;
  if (range.isSemVerRange()) return range.getSemVerRange().lower;
  return range.getText();
}

bool admits(const VersionRange& range, const VersionId& version,
            const std::optional<Precedence>& precedence) {
  if (isUnion(range)) {
    const auto pieces = piecesOf(range);
    return std::any_of(pieces.begin(), pieces.end(), [&](const VersionRange& piece) {
      return admits(piece, version, precedence);
    });
  }
  if (const auto bounds = boundsOf(range)) {
    return precedence && *Precedence::of(bounds->lower) <= *precedence &&
           *precedence < *Precedence::of(bounds->upper);
  }
  const VersionId single = *findSingleVersion(range);
  return single == version || (single.isSemVer() && precedence == single.getSemVer());
}

bool isReversed(const VersionRange& range) {
  if (isUnion(range)) {
    const auto pieces = piecesOf(range);
    return std::any_of(pieces.begin(), pieces.end(), isReversed);
  }
  const auto bounds = boundsOf(range);
  return bounds && *Precedence::of(bounds->upper) < *Precedence::of(bounds->lower);
}

bool admitsNothing(const VersionRange& range) {
  if (isUnion(range)) {
    const auto pieces = piecesOf(range);
    return std::all_of(pieces.begin(), pieces.end(), admitsNothing);
  }
  const auto bounds = boundsOf(range);
  return bounds && *Precedence::of(bounds->upper) <= *Precedence::of(bounds->lower);
}

std::string rangeText(const VersionRange& range) {
  if (isUnion(range)) {
    std::string text;
    for (const VersionRange& piece : piecesOf(range)) {
      text += (text.empty() ? "" : " or ") + rangeText(piece);
    }
    return text;
  }
  if (const auto bounds = boundsOf(range)) {
    return "[" + textOf(bounds->lower) + ", " + textOf(bounds->upper) + ")";
  }
  return textOf(*findSingleVersion(range));
}

}  // namespace tarn::evolution::catalogue
