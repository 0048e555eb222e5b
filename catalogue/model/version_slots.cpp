#include "catalogue/model/version_slots.hpp"

#include <algorithm>
#include <utility>

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;

namespace {

using Version = VersionSlots::Version;

bool comesBefore(const Version& left, const Version& right) {
  if (left.name != right.name) return left.name < right.name;
  if (left.semantic.has_value() != right.semantic.has_value()) return left.semantic.has_value();
  return left.semantic != right.semantic ? left.semantic < right.semantic : left.row < right.row;
}

bool isLower(const Version& version, const SemVer& bound) {
  return *version.semantic < bound;
}

bool isHigher(const SemVer& bound, const Version& version) {
  return bound < *version.semantic;
}

}  // namespace

std::vector<SlotInterval> united(std::vector<SlotInterval> intervals) {
  std::erase_if(intervals, [](SlotInterval each) { return each.empty(); });
  std::sort(intervals.begin(), intervals.end(),
            [](SlotInterval left, SlotInterval right) { return left.begin < right.begin; });
  std::vector<SlotInterval> result;
  for (const SlotInterval each : intervals) {
    if (result.empty() || result.back().end < each.begin) {
      result.push_back(each);
    } else {
      result.back().end = std::max(result.back().end, each.end);
    }
  }
  return result;
}

VersionSlots::VersionSlots(std::vector<Version> versions, std::size_t names, std::size_t rows)
    : versions_(std::move(versions)), all_(names), semantic_(names), slotOf_(rows, nothing) {
  std::sort(versions_.begin(), versions_.end(), comesBefore);
  for (Slot slot = 0; slot < size(); ++slot) {
    const auto& [name, row, semantic] = versions_[slot];
    if (all_[name].empty()) all_[name].begin = semantic_[name].begin = semantic_[name].end = slot;
    all_[name].end = slot + 1;
    if (semantic) semantic_[name].end = slot + 1;
    slotOf_[row] = slot;
  }
}

SlotInterval VersionSlots::denotedBy(NameNumber name, const SemVer& version) const {
  const SlotInterval among = semantic(name);
  const auto begin = versions_.begin();
  const auto first = std::lower_bound(begin + among.begin, begin + among.end, version, isLower);
  const auto last = std::upper_bound(first, begin + among.end, version, isHigher);
  return {static_cast<Slot>(first - begin), static_cast<Slot>(last - begin)};
}

SlotInterval VersionSlots::between(NameNumber name, const pathfinder::SemVerRange& bounds) const {
  const SlotInterval among = semantic(name);
  const auto begin = versions_.begin();
  const auto firstFrom = [&](const SemVer& bound) {
    const auto first = std::lower_bound(begin + among.begin, begin + among.end, bound, isLower);
    return static_cast<Slot>(first - begin);
  };
  return {firstFrom(bounds.lower), firstFrom(bounds.upper)};
}

}  // namespace tarn::evolution::catalogue
