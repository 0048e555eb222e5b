#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "pathfinder/hop.hpp"
#include "pathfinder/metamodel.hpp"
#include "pathfinder/planning/bit_row.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

using NameIndex = std::uint32_t;
using VersionIndex = std::uint32_t;
using VariantIndex = std::uint32_t;

/// One version for each name of a search space.
using VersionSelection = std::vector<VersionIndex>;

/// The versions that can lie on a path, with the hops between them, as small integers.
///
/// A version is a descriptor, not a version number: what the application returns for a hop's target
/// may carry another number, and several descriptors may share one. Names, and the versions of each
/// name, are numbered consecutively; names ascend. A name that some source does not hold has one
/// version more, "absent", which it has until a link brings it in.
///
/// Irrelevant names are not among them. Made by a `SpaceSurvey`, to which it refers; read-only.
struct SearchSpace {
  static constexpr std::uint32_t none = ~std::uint32_t{0};

  /// A hop to another version of the space.
  struct Move {
    VersionIndex target;
    bool expensive;
    std::uint32_t place;  ///< among the hops of the version it leaves, from zero
  };

  struct Version {
    NameIndex name;
    const Metamodel* descriptor = nullptr;                                  ///< null for "absent"
    const std::vector<std::shared_ptr<LinkedMetamodel>>* linked = nullptr;  ///< null if it failed
    VariantIndex firstVariant = 0;  ///< its linked metamodels are variants from here on, in order
    VariantIndex variantCount = 0;
    std::span<const Hop> hops;    ///< those that do not go against the direction, in order
    std::span<const Move> moves;  ///< those of the hops that lead to a version of the space
    bool isEntry = false;         ///< whether a link can bring this version in

    bool canBeCombined = true;  ///< whether one of its linked metamodels can be

    /// Whether it has several linked metamodels, of which one links what no dependency asks for.
    /// Then any two of the versions that they link may go together, but not all of them.
    bool linksAtWill = false;

    /// Whether its hops have been collected without anything that failed.
    bool areHopsCollected = false;

    /// Whether it stands for whatever versions unknown hops may lead to: it can stand beside
    /// anything.
    bool isUnknown = false;
  };

  /// A linked metamodel that another one links.
  struct Link {
    NameIndex name;
    VariantIndex variant;
  };

  struct Variant {
    VersionIndex version = none;    ///< `none` when that version is not in the space
    std::span<const Link> closure;  ///< itself and all that it links, by ascending name

    /// False when it links what is not in the space and does not stand back, or requires what is
    /// not in the space: no step leads to a baseline that holds it.
    bool canBeCombined = true;

    /// Whether it links another version of its own name. Such a link is not in the closure: the
    /// version that it leads to stands back, unless its name is the first of those that a step
    /// combines.
    bool linksOwnName = false;

    /// The variant that the closure holds under a name; `none` when it holds none.
    VariantIndex heldUnder(NameIndex name) const;
  };

  /// That a version has to have one of some versions of another name beside it, of which "absent"
  /// may be one. The application asks for it, beyond what links say.
  struct Requirement {
    VersionIndex version;
    NameIndex needed;
    std::vector<VersionIndex> admitted;
  };

  struct Name {
    std::u16string text;
    VersionIndex first;          ///< its versions are those from here ...
    VersionIndex end;            ///< ... up to but without this one
    VersionIndex absent = none;  ///< the last of them, when some source does not hold the name
    std::size_t firstWord = 0;   ///< of its versions, in a set of versions of all names

    /// Whether a selection of versions that can stand together tells which linked metamodel of this
    /// name is meant: each version has one, and neither it nor those that it has to do with leave
    /// anything open.
    bool isCertain = false;

    std::size_t words() const { return wordsFor(end - first); }
  };

  /// The version's number among those of its name.
  std::size_t rankOf(VersionIndex version) const {
    return version - names[versions[version].name].first;
  }

  /// The versions that a version's links can bring in, ascending.
  std::span<const VersionIndex> entriesBy(VersionIndex version) const {
    if (entryStarts.empty()) return {};
    return std::span(entries).subspan(entryStarts[version],
                                      entryStarts[version + 1] - entryStarts[version]);
  }

  bool isAbsent(VersionIndex version) const { return versions[version].descriptor == nullptr; }

  /// Whether hops lead from a version to where nobody knows.
  bool hasUnknownHops(VersionIndex version) const {
    const std::span<const Move> leaving = versions[version].moves;
    return std::any_of(leaving.begin(), leaving.end(),
                       [&](const Move& move) { return versions[move.target].isUnknown; });
  }

  /// The variants of a version; none of "absent".
  std::span<const Variant> variantsOf(VersionIndex version) const {
    return std::span(variants).subspan(versions[version].firstVariant,
                                       versions[version].variantCount);
  }

  /// Whether some target admits a selection.
  bool isTarget(std::span<const VersionIndex> selection) const;

  /// The version that a linked metamodel of a name that is linked is of; `none` when that is not in
  /// the space.
  VersionIndex versionOf(const LinkedMetamodel& linked) const;

  std::vector<Name> names;
  std::vector<Version> versions;
  std::size_t words = 0;             ///< of a set of versions of all names
  std::vector<std::uint32_t> bitOf;  ///< by version: its number in such a set

  struct Source {
    VersionSelection selection;  ///< empty when no plan can start from it

    /// Whether it is a consistent baseline of the repository's own linked metamodels. Otherwise the
    /// first step links everything anew.
    bool isRegular = true;
  };

  /// What each source of the question holds.
  std::vector<Source> sources;

  /// What the targets admit that can be reached: `none` for a name that a target leaves free.
  std::vector<VersionSelection> targets;

  std::vector<Variant> variants;

  bool anyLinksOwnName = false;  ///< whether one of them does

  /// The name before which the first irrelevant one stands; `none` when none does. Only where
  /// `anyLinksOwnName`.
  NameIndex firstIrrelevant = none;

  std::vector<Requirement> requirements;

  bool anyLinksAtWill = false;  ///< whether a version does

  /// What the containers of many small parts below are made in.
  std::pmr::monotonic_buffer_resource memory{32768};

  /// The variants of names that link or are linked.
  std::pmr::unordered_map<const LinkedMetamodel*, VariantIndex> variantOf{&memory};

  // What versions and variants point to.
  std::vector<Move> moves;
  std::vector<Link> links;
  std::vector<VersionIndex> entries;
  std::vector<std::size_t> entryStarts;  // by version, and the end; empty when there are no entries
};

}  // namespace tarn::evolution::pathfinder
