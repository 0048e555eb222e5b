#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "pathfinder/linked_metamodel.hpp"
#include "platform/meta_types.hpp"
#include "tarn_evolution_pathfinder_export.hpp"

namespace tarn::evolution::pathfinder {

/// A consistent selection of metamodel versions: at most one linked metamodel for each name, closed
/// under their links.
///
/// Baselines are the nodes of the path search. They are plain values, one hash map of shared
/// pointers, and are compared by the identity of the linked metamodels that they hold: two linked
/// metamodels with equal descriptors are different selections.
///
/// Built by `create`, `tryEmplace` and `combine`, a baseline holds each linked metamodel under its
/// own name together with all its links, and no null pointer. Any number of threads may read one
/// baseline that none of them changes.
///
/// A null pointer among the entries, as a look-up `metamodels[name]` makes it, holds nothing: here
/// and in every operation of `VersionRepository`, look-ups, texts, hashes, directions and steps
/// pass it over. Only where entries are compared, it is one: it equals a null pointer and nothing
/// else, and what is to be added under its name is refused as it is beside any other.
///
/// A null pointer given in place of a linked metamodel is refused with std::invalid_argument.
/// Look-ups of types throw what the host's types throw, and `combine` what is said there. Else
/// nothing here throws but std::bad_alloc. When it throws, nothing has changed.
class TARN_EVOLUTION_PATHFINDER_EXPORT VersionBaseline {
 public:
  using Entries = std::unordered_map<std::u16string, std::shared_ptr<LinkedMetamodel>>;

  VersionBaseline() = default;

  /// A baseline of just these entries, which nobody checks. A list in braces is none: it would be
  /// taken for the two ends of a range.
  template <class Map>
  requires std::is_same_v<Map, Entries>
  explicit VersionBaseline(Map entries) : metamodels(std::move(entries)) {}

  /// The baseline of `metamodels` and all that they link; no value when they disagree.
  static std::optional<VersionBaseline> create(
      const std::vector<std::shared_ptr<LinkedMetamodel>>& metamodels);

  /// Every consistent baseline that picks one alternative for each name.
  ///
  /// A pick that an earlier pick's links have already brought in counts only when it is among its
  /// name's alternatives. Alternatives agree by identity; version ranges are not looked at. The
  /// result is in mixed-radix order, the name that the map yields first being the most significant
  /// digit. A null pointer among the alternatives is compared as any other, and refused, with the
  /// name, only where it would have to be added. No names give no baseline. Throws
  /// std::length_error when the baselines would take more than half of the machine's memory and,
  /// called from within a search, whatever stops that. Cost: (surviving partial baselines) x
  /// (alternatives), name by name.
  static std::vector<VersionBaseline> combine(
      const std::unordered_map<std::u16string, std::vector<std::shared_ptr<LinkedMetamodel>>>&
          alternatives);

  /// Whether `tryEmplace` would add the linked metamodel, or finds it here already.
  bool admits(const std::shared_ptr<LinkedMetamodel>& metamodel) const;

  /// Adds a linked metamodel with its links; returns false, and changes nothing, when the baseline
  /// holds another linked metamodel under one of their names.
  bool tryEmplace(const std::shared_ptr<LinkedMetamodel>& metamodel);

  /// Whether every entry of `other` stands here with the very same pointer. A null entry of `other`
  /// is met by an absent one, too.
  bool includes(const VersionBaseline& other) const;

  /// The same names with the very same pointers.
  bool operator==(const VersionBaseline& other) const;

  /// The type that a qualified name denotes in this selection: one registered for a selected
  /// metamodel, or else a standard type (see `lookupStandardType` for threads); empty when there is
  /// none. Of several metamodels that register the name, the first in the order of `metamodels`
  /// counts.
  tarn::meta::Type findType(const std::u16string& qualifiedName) const;

  /// As `findType`; empty as well when the type is not a class.
  tarn::meta::Class findClass(const std::u16string& qualifiedName) const;

  /// The registered types of all selected metamodels that are subclasses of `base`, in no
  /// particular order.
  std::vector<tarn::meta::Type> fetchSubclasses(const tarn::meta::Type& base) const;

  /// The framework's standard type of that name: a primitive type, a model root class or another
  /// type of the framework's own meta package; empty when there is none.
  ///
  /// Fills the framework's `StandardTypes` handles that it finds empty on the way, without a lock.
  /// Until all are filled, calls must not overlap; looking up any name that is no primitive type's
  /// fills all.
  static tarn::meta::Type lookupStandardType(const std::u16string& qualifiedName);

  Entries metamodels;
};

/// Writes "Baseline {name@version, name@version, ...}" in the order of the map. The name of a null
/// entry stands alone.
TARN_EVOLUTION_PATHFINDER_EXPORT std::ostream& operator<<(std::ostream& out,
                                                          const VersionBaseline& baseline);

}  // namespace tarn::evolution::pathfinder

/// Hashes names and versions in the order in which the map yields its entries: equal baselines that
/// were filled in another order may hash differently. For a key that must not depend on that order,
/// take `VersionRepository::KeyHasherVersionBaselineUnordered`.
template <>
struct TARN_EVOLUTION_PATHFINDER_EXPORT std::hash<tarn::evolution::pathfinder::VersionBaseline> {
  std::size_t operator()(
      const tarn::evolution::pathfinder::VersionBaseline& baseline) const noexcept;
};
