#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "catalogue/check/catalogue_draft.hpp"

namespace tarn::evolution::catalogue {

/// A version of a metamodel in a draft: the versions of one name stand together, those with a
/// semantic version or equivalent first and ascending, so that every range is an interval.
using Slot = std::uint32_t;
using NameNumber = std::uint32_t;
constexpr std::uint32_t nothing = std::numeric_limits<std::uint32_t>::max();

/// The slots from `begin` up to but without `end`.
struct SlotInterval {
  Slot begin = 0;
  Slot end = 0;

  bool empty() const { return begin >= end; }
  bool contains(Slot slot) const { return begin <= slot && slot < end; }
};

/// A dependency of which name and range could be read, and whose name is there.
struct ResolvedDependency {
  NameNumber name;
  SlotInterval candidates;
  std::uint32_t row;                      ///< in the list of its metamodel
  bool isFirstOfName;                     ///< among the dependencies of its metamodel
  std::vector<SlotInterval> pieces = {};  ///< of a union, which `candidates` spans; else none

  bool admits(Slot slot) const;
};

/// Look-ups in a draft, over the rows whose names and versions could be read. Refers to the draft.
class DraftIndex {
 public:
  struct Name {
    std::u16string_view text;
    SlotInterval all;
    Slot semanticEnd = 0;    ///< from where on its versions are texts without equivalent
    bool isComplete = true;  ///< whether the versions of all of its rows could be read
  };

  explicit DraftIndex(const CatalogueDraft& draft);

  const CatalogueDraft& draft() const { return draft_; }
  Slot slotCount() const { return static_cast<Slot>(rows_.size()); }
  const std::vector<Name>& names() const { return names_; }  ///< ascending

  /// The number of a name that some row has; `nothing` when none does.
  NameNumber find(const std::u16string& name) const;

  const MetamodelRow& row(Slot slot) const { return draft_.metamodels[rows_[slot]]; }
  std::uint32_t rowNumber(Slot slot) const { return rows_[slot]; }
  NameNumber nameOf(Slot slot) const { return nameOf_[slot]; }
  bool isSemantic(Slot slot) const { return slot < names_[nameOf_[slot]].semanticEnd; }
  const pathfinder::SemVer& semanticVersion(Slot slot) const { return semantic_[slot]; }

  /// The slot of a row by its position; `nothing` when its name or version could not be read.
  Slot slotOfRow(std::size_t row) const { return slotOfRow_[row]; }

  /// The versions that each part of a range admits: one interval, or those of a union.
  std::vector<SlotInterval> piecesIn(NameNumber name, const pathfinder::VersionRange& range) const;

  /// The versions that a range which is no union admits.
  SlotInterval versionsIn(NameNumber name, const pathfinder::VersionRange& range) const;

  /// The versions that a version denotes: those that carry it, and those for which it is the
  /// equivalent.
  SlotInterval versionsAt(NameNumber name, const pathfinder::VersionId& version) const;

  /// The version that asking for a version gives: of those that it denotes, and of those that share
  /// their equivalent with a text version, the first in the file. `nothing` when there is none.
  Slot denotedBy(NameNumber name, const pathfinder::VersionId& version) const;

  /// The dependencies of a version that are resolved, in their order.
  const ResolvedDependency* dependenciesBegin(Slot slot) const {
    return dependencies_.data() + dependencyStart_[slot];
  }
  const ResolvedDependency* dependenciesEnd(Slot slot) const {
    return dependencies_.data() + dependencyStart_[slot + 1];
  }

  /// "name@version".
  std::string describe(Slot slot) const;

 private:
  struct TextKey {
    NameNumber name;
    std::u16string_view text;
    bool operator==(const TextKey& other) const = default;
  };
  struct TextKeyHash {
    std::size_t operator()(const TextKey& key) const noexcept {
      return std::hash<std::u16string_view>()(key.text) ^
             (key.name * std::size_t{0x9e3779b97f4a7c15});
    }
  };

  struct Entry;

  void numberNames();
  std::vector<Entry> entriesInOrder();
  void placeVersions();
  void resolveDependencies();
  ResolvedDependency resolved(NameNumber name, const pathfinder::VersionRange& range,
                              std::uint32_t row, bool isFirstOfName) const;
  Slot firstAtLeast(NameNumber name, const pathfinder::SemVer& bound) const;
  Slot firstAbove(NameNumber name, const pathfinder::SemVer& bound) const;

  const CatalogueDraft& draft_;
  std::vector<Name> names_;
  std::unordered_map<std::u16string_view, NameNumber> numbers_;
  std::vector<std::uint32_t> rows_;  // of each slot
  std::vector<NameNumber> nameOf_;
  std::vector<pathfinder::SemVer> semantic_;
  std::vector<Slot> slotOfRow_;
  std::unordered_map<TextKey, Slot, TextKeyHash> texts_;  // the first row of each
  std::vector<ResolvedDependency> dependencies_;          // of all slots, one after the other
  std::vector<std::size_t> dependencyStart_;              // of each slot, and the end
};

}  // namespace tarn::evolution::catalogue
