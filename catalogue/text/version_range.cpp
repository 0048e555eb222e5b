#include "catalogue/text/version_range.hpp"

#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;
using pathfinder::VersionRange;

std::optional<VersionId> findSingleVersion(const VersionRange& range) {
  if (!range.isSemVerRange()) return VersionId(range.getText());
  const pathfinder::SemVer& lower = range.getSemVerRange().lower;
  return range == VersionRange::singleVersion(lower) ? std::optional<VersionId>(lower)
                                                     : std::nullopt;
}

bool isReversed(const VersionRange& range) {
  return !findSingleVersion(range) && range.getSemVerRange().upper < range.getSemVerRange().lower;
}

bool admitsNothing(const VersionRange& range) {
  return !findSingleVersion(range) &&
         !(range.getSemVerRange().lower < range.getSemVerRange().upper);
}

std::string rangeText(const VersionRange& range) {
  const auto single = findSingleVersion(range);
  return single ? textOf(*single) : textOf(range);
}

}  // namespace tarn::evolution::catalogue
