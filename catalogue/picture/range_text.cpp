#include "catalogue/picture/range_text.hpp"

#include "catalogue/explanation/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;
using pathfinder::VersionRange;

std::optional<VersionId> findSingleVersion(const VersionRange& range) {
  if (!range.isSemVerRange()) return VersionId(range.getText());
  const auto& [lower, upper] = range.getSemVerRange();
  const bool isSingle = lower < upper && range == VersionRange::singleVersion(lower);
  return isSingle ? std::optional<VersionId>(lower) : std::nullopt;
}

std::string rangeText(const VersionRange& range) {
  const auto single = findSingleVersion(range);
  return single ? textOf(*single) : textOf(range);
}

}  // namespace tarn::evolution::catalogue
