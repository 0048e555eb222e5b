#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "catalogue/check/catalogue_draft.hpp"
#include "catalogue/model/version_slots.hpp"

namespace tarn::evolution::catalogue {

/// A dependency of which name and range could be read, and whose name is there.
struct ResolvedDependency {
  NameNumber name;
  SlotInterval candidates;                ///< for a union, from the first to the last
  std::uint32_t row;                      ///< in the list of its metamodel
  bool isFirstOfName;                     ///< among the dependencies of its metamodel
  std::vector<SlotInterval> pieces = {};  ///< of `candidates`, when not all in them are
  bool isOptional = false;                ///< counts only if the name is there

  bool admits(Slot slot) const;

  /// Hands each interval of candidates to `receive`.
  template <class Receive>
  void forCandidates(const Receive& receive) const {
    if (pieces.empty()) return receive(candidates);
    for (const SlotInterval piece : pieces) receive(piece);
  }

  /// Whether linking chooses a version by it, and finds one.
  bool decides() const { return isFirstOfName && !candidates.empty(); }
};

/// Which dependencies an index has.
enum class Needs {
  Linked,  ///< those that are not optional, but for what is left out
  All,     ///< of several on one name, what does not link counts beside the first that does
};

/// Look-ups in a draft, over the rows whose names and versions could be read. Refers to the draft.
class DraftIndex {
 public:
  struct Name {
    std::u16string_view text;
    bool isComplete = true;  ///< whether the versions of all of its rows could be read
  };

  explicit DraftIndex(const CatalogueDraft& draft, Needs needs = Needs::Linked);

  const CatalogueDraft& draft() const { return draft_; }
  const VersionSlots& slots() const { return slots_; }
  const std::vector<Name>& names() const { return names_; }  ///< ascending

  /// The number of a name that some row has; `nothing` when none does.
  NameNumber find(const std::u16string& name) const;

  const MetamodelRow& row(Slot slot) const { return draft_.metamodels[slots_.at(slot).row]; }
  const pathfinder::VersionId& version(Slot slot) const { return *row(slot).version; }
  Place placeOf(Slot slot) const { return draft_.placeOf(row(slot)); }

  /// The versions that a range admits, as ascending intervals that do not touch.
  std::vector<SlotInterval> versionsIn(NameNumber name,
                                       const pathfinder::VersionRange& range) const;

  /// The versions that a version denotes: those that carry it, and those that are said to be
  /// equivalent to it.
  SlotInterval versionsAt(NameNumber name, const pathfinder::VersionId& version) const;

  /// The version that asking for a version gives: of those that it denotes, the first that carries
  /// it, otherwise the first in the file. `nothing` when there is none.
  Slot denotedBy(NameNumber name, const pathfinder::VersionId& version) const;

  /// The dependencies of a version that are resolved, in their order.
  std::span<const ResolvedDependency> dependenciesOf(Slot slot) const {
    return std::span(dependencies_).subspan(dependencyStart_[slot], dependencyCount(slot));
  }

  /// Leaves out the dependencies of which `leadsBack(slot, candidate)` for some candidate: they do
  /// not link (see `Catalogue`). With all needs they stay as such.
  template <class LeadsBack>
  void leaveOutLeadingBack(const LeadsBack& leadsBack);

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

  void numberNames();
  VersionSlots placeVersions();
  void resolveDependencies();
  ResolvedDependency resolved(NameNumber name, const pathfinder::VersionRange& range,
                              std::uint32_t row, bool isFirstOfName) const;

  /// Gives the slot of a text version of that name, or `nothing`.
  auto textFinder(NameNumber name) const {
    return [this, name](const std::u16string& text) {
      const auto found = texts_.find({name, text});
      return found == texts_.end() ? nothing : slots_.slotOf(found->second);
    };
  }

  std::size_t dependencyCount(Slot slot) const {
    return dependencyStart_[slot + std::size_t{1}] - dependencyStart_[slot];
  }

  const CatalogueDraft& draft_;
  const Needs needs_;
  std::vector<Name> names_;
  std::unordered_map<std::u16string_view, NameNumber> numbers_;
  std::unordered_map<TextKey, std::uint32_t, TextKeyHash> texts_;  // the first row of each
  VersionSlots slots_;
  std::vector<ResolvedDependency> dependencies_;  // of all slots, one after the other
  std::vector<std::size_t> dependencyStart_;      // of each slot, and the end
};

template <class LeadsBack>
void DraftIndex::leaveOutLeadingBack(const LeadsBack& leadsBack) {
  std::vector<ResolvedDependency> kept;
  std::vector<Slot> seenIn(names_.size(), nothing);
  for (Slot slot = 0; slot < slots_.size(); ++slot) {
    const std::size_t first = kept.size();
    for (const ResolvedDependency& dependency : dependenciesOf(slot)) {
      bool links = !dependency.isOptional;
      dependency.forCandidates([&](SlotInterval each) {
        for (Slot candidate = each.begin; candidate < each.end && links; ++candidate) {
          links = !leadsBack(slot, candidate);
        }
      });
      if (!links && needs_ == Needs::Linked) continue;
      kept.push_back(dependency);
      kept.back().isFirstOfName = !links || std::exchange(seenIn[dependency.name], slot) != slot;
    }
    dependencyStart_[slot] = first;  // what is looked at next starts where it did
  }
  dependencyStart_.back() = kept.size();
  dependencies_ = std::move(kept);
}

}  // namespace tarn::evolution::catalogue
