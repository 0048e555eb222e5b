#include "catalogue/text/range_text.hpp"

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

std::string rangeText(const VersionRange& range) {
  const auto single = findSingleVersion(range);
  return single ? textOf(*single) : textOf(range);
}

}  // namespace tarn::evolution::catalogue
