#include "catalogue/model/version_slots.hpp"

#include <algorithm>
#include <utility>

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;

namespace {

using Version = VersionSlots::Version;

bool comesBefore(const Version& left, const Version& right) {
  if (left.name != right.name) return left.name < right.name;
  if (left.precedence.has_value() != right.precedence.has_value()) {
    return left.precedence.has_value();
  }
  if (left.precedence) {
    const auto order = *left.precedence <=> *right.precedence;
    if (order != 0) return order < 0;
  }
  return std::pair(!left.isSemantic, left.row) < std::pair(!right.isSemantic, right.row);
}

bool isLower(const Version& version, const Precedence& bound) {
  return *version.precedence < bound;
}

bool isHigher(const Precedence& bound, const Version& version) {
  return bound < *version.precedence;
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
    : versions_(std::move(versions)), all_(names), ordered_(names), slotOf_(rows, nothing) {
  std::sort(versions_.begin(), versions_.end(), comesBefore);
  for (Slot slot = 0; slot < size(); ++slot) {
    const Version& version = versions_[slot];
    SlotInterval& all = all_[version.name];
    SlotInterval& ordered = ordered_[version.name];
    if (all.empty()) all.begin = ordered.begin = ordered.end = slot;
    all.end = slot + 1;
    if (version.precedence) ordered.end = slot + 1;
    slotOf_[version.row] = slot;
  }
}

SlotInterval VersionSlots::denotedBy(NameNumber name, const SemVer& version) const {
  SlotInterval found = at(name, version);
  while (!found.empty() && !versions_[found.end - 1].isSemantic) --found.end;
  return found;
}

SlotInterval VersionSlots::at(NameNumber name, const Precedence& precedence) const {
  const SlotInterval among = ordered(name);
  const auto begin = versions_.begin();
  const auto first = std::lower_bound(begin + among.begin, begin + among.end, precedence, isLower);
  const auto last = std::upper_bound(first, begin + among.end, precedence, isHigher);
  return {static_cast<Slot>(first - begin), static_cast<Slot>(last - begin)};
}

SlotInterval VersionSlots::between(NameNumber name, const VersionBounds& bounds) const {
  const SlotInterval among = ordered(name);
  const auto begin = versions_.begin();
  const auto firstFrom = [&](const pathfinder::VersionId& bound) {
    const auto first =
        std::lower_bound(begin + among.begin, begin + among.end, *Precedence::of(bound), isLower);
    return static_cast<Slot>(first - begin);
  };
  return {firstFrom(bounds.lower), firstFrom(bounds.upper)};
}

}  // namespace tarn::evolution::catalogue
