#include "catalogue/import/foreign_range.hpp"

#include <algorithm>
#include <limits>

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::SemVerRange;

namespace {

using Comparator = ForeignRange::Comparator;
using Comparison = ForeignRange::Comparison;

bool accepts(Comparison comparison, Comparison single) {
  return (static_cast<unsigned>(comparison) & static_cast<unsigned>(single)) != 0;
}

bool holds(const Comparator& comparator, const FullVersion& version) {
  const std::weak_ordering order = comparePrecedence(version, comparator.version);
  return accepts(comparator.comparison, order < 0    ? Comparison::Less
                                        : order == 0 ? Comparison::Equal
                                                     : Comparison::Greater);
}

SemVer afterPatch(const SemVer& version) {
  return nextPatch(version).value_or(widestRange().upper);
}

/// What a comparison leaves of the releases. Those of "1.0.0-rc" and below are those below 1.0.0.
std::vector<SemVerRange> spansOf(const Comparator& comparator) {
  const SemVer& core = comparator.version.core;
  const bool isRelease = !comparator.version.isPrerelease();
  const SemVer after = isRelease ? afterPatch(core) : core;
  const SemVerRange all = widestRange();
  std::vector<SemVerRange> spans;
  const auto add = [&](Comparison single, const SemVer& lower, const SemVer& upper) {
    if (accepts(comparator.comparison, single)) spans.push_back({lower, upper});
  };
  add(Comparison::Less, all.lower, core);
  add(Comparison::Equal, core, after);
  add(Comparison::Greater, after, all.upper);
  return spans;
}

}  // namespace

SemVerRange widestRange() {
  constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  return {SemVer{}, SemVer{most, most, most}};
}

std::vector<SemVerRange> unitedSpans(std::vector<SemVerRange> spans) {
  std::erase_if(spans, [](const SemVerRange& span) { return !(span.lower < span.upper); });
  std::sort(spans.begin(), spans.end(), [](const SemVerRange& left, const SemVerRange& right) {
    return left.lower < right.lower;
  });
  std::vector<SemVerRange> united;
  for (const SemVerRange& span : spans) {
    if (united.empty() || united.back().upper < span.lower) {
      united.push_back(span);
    } else {
      united.back().upper = std::max(united.back().upper, span.upper);
    }
  }
  return united;
}

std::vector<SemVerRange> commonSpans(const std::vector<SemVerRange>& left,
                                     const std::vector<SemVerRange>& right) {
  std::vector<SemVerRange> common;
  for (const SemVerRange& one : left) {
    for (const SemVerRange& other : right) common.push_back(one.intersection(other));
  }
  return unitedSpans(std::move(common));
}

ForeignRange ForeignRange::everything() {
  ForeignRange range;
  range.isEverything_ = true;
  return range;
}

ForeignRange ForeignRange::versions(std::vector<std::string> texts) {
  ForeignRange range;
  range.texts_ = std::move(texts);
  std::sort(range.texts_.begin(), range.texts_.end());
  return range;
}

bool ForeignRange::matches(const std::string& text, const FullVersion& version) const {
  if (isEverything_ || std::binary_search(texts_.begin(), texts_.end(), text)) return true;
  return version.isSemantic &&
         std::any_of(alternatives_.begin(), alternatives_.end(),
                     [&](const Alternative& each) { return matches(each, version); });
}

bool ForeignRange::matches(const Alternative& alternative, const FullVersion& version) const {
  if (!std::all_of(alternative.begin(), alternative.end(),
                   [&](const Comparator& each) { return holds(each, version); })) {
    return false;
  }
  if (!version.isPrerelease() || prereleases_ == Prereleases::Ordered) return true;
  return std::any_of(alternative.begin(), alternative.end(), [&](const Comparator& each) {
    return each.version.isPrerelease() && each.version.core == version.core;
  });
}

std::vector<SemVerRange> ForeignRange::spans() const {
  if (isEverything_) return {widestRange()};
  std::vector<SemVerRange> spans;
  for (const Alternative& alternative : alternatives_) {
    std::vector<SemVerRange> left{widestRange()};
    for (const Comparator& comparator : alternative) {
      left = commonSpans(left, spansOf(comparator));
    }
    spans.insert(spans.end(), left.begin(), left.end());
  }
  return unitedSpans(std::move(spans));
}

}  // namespace tarn::evolution::catalogue
