#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "catalogue/precedence.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/version_range.hpp"
#include "pathfinder/version_id.hpp"

namespace tarn::evolution::catalogue {

/// A version of a catalogue, by its place in an order in which every range is an interval, and a
/// union of ranges several: the versions of one name stand together, those with a precedence first
/// and ascending, of equal ones those that a semantic version denotes first, otherwise in the
/// catalogue's order.
using Slot = std::uint32_t;

/// A name, by its place in any order of names.
using NameNumber = std::uint32_t;

/// No slot, name or anything else that has a number.
constexpr std::uint32_t nothing = std::numeric_limits<std::uint32_t>::max();

/// The slots from `begin` up to but without `end`.
struct SlotInterval {
  Slot begin = 0;
  Slot end = 0;

  bool empty() const { return begin >= end; }
  bool contains(Slot slot) const { return begin <= slot && slot < end; }
  Slot size() const { return end - begin; }
};

/// The same slots as ascending intervals that do not touch, none of them empty.
std::vector<SlotInterval> united(std::vector<SlotInterval> intervals);

/// The versions of a catalogue in their slots. Ranges take a binary search each. Text versions are
/// for others to find.
class VersionSlots {
 public:
  struct Version {
    NameNumber name;
    std::uint32_t row;                     ///< its place in the catalogue
    std::optional<Precedence> precedence;  ///< see `CatalogueMetamodel::precedence`
    bool isSemantic;  ///< whether a semantic version, its own or its equivalent, denotes it
  };

  /// Versions in any order; `names` and `rows` are beyond all of their numbers.
  VersionSlots(std::vector<Version> versions, std::size_t names, std::size_t rows);

  Slot size() const { return static_cast<Slot>(versions_.size()); }
  const Version& at(Slot slot) const { return versions_[slot]; }

  /// `nothing` for a row that no version has.
  Slot slotOf(std::size_t row) const { return slotOf_[row]; }

  /// All versions of a name, and those of them with a precedence.
  SlotInterval all(NameNumber name) const { return all_[name]; }
  SlotInterval ordered(NameNumber name) const { return ordered_[name]; }

  /// The versions of a name that have this precedence.
  SlotInterval at(NameNumber name, const Precedence& precedence) const;

  /// The versions that a semantic version denotes.
  SlotInterval denotedBy(NameNumber name, const pathfinder::SemVer& version) const;

  /// The versions that a version denotes; `findText` gives the slot of a text version of that name,
  /// or `nothing`.
  template <class FindText>
  SlotInterval denotedBy(NameNumber name, const pathfinder::VersionId& version,
                         const FindText& findText) const {
    if (version.isSemVer()) return denotedBy(name, version.getSemVer());
    const Slot slot = findText(version.getText());
    return slot == nothing ? SlotInterval{} : SlotInterval{slot, slot + 1};
  }

  /// Hands the versions that a range admits to `receive`, as ascending intervals that do not touch:
  /// at most one of them, but for a union.
  template <class FindText, class Receive>
  void forAdmitted(NameNumber name, const pathfinder::VersionRange& range, const FindText& findText,
                   const Receive& receive) const {
    if (!isUnion(range)) {
      const SlotInterval interval = admittedByOne(name, range, findText);
      if (!interval.empty()) receive(interval);
      return;
    }
    std::vector<SlotInterval> intervals;
    for (const auto& piece : piecesOf(range)) {
      intervals.push_back(admittedByOne(name, piece, findText));
    }
    for (const SlotInterval interval : united(std::move(intervals))) receive(interval);
  }

 private:
  /// For a range that is no union.
  template <class FindText>
  SlotInterval admittedByOne(NameNumber name, const pathfinder::VersionRange& range,
                             const FindText& findText) const {
    if (const auto bounds = boundsOf(range)) return between(name, *bounds);
    const auto single = *findSingleVersion(range);
    return single.isSemVer() ? at(name, single.getSemVer()) : denotedBy(name, single, findText);
  }

  SlotInterval between(NameNumber name, const VersionBounds& bounds) const;

  std::vector<Version> versions_;
  std::vector<SlotInterval> all_;  // by name
  std::vector<SlotInterval> ordered_;
  std::vector<Slot> slotOf_;  // by row
};

}  // namespace tarn::evolution::catalogue
