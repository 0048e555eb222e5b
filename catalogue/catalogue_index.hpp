#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "catalogue/precedence.hpp"
#include "catalogue/version_scale.hpp"
#include "pathfinder/hop.hpp"
#include "pathfinder/metamodel.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

struct CatalogueMetamodel;

/// Finds metamodels and hops by name and version. Answers are positions in the lists that the index
/// was built from, in ascending order.
///
/// One version's metamodels and the hops that leave it take one hash look-up each; a range takes a
/// binary search among the versions of its name.
class TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueIndex {
 public:
  using Position = std::size_t;
  using Positions = std::vector<Position>;

  /// The precedence of a version, and the metamodel that has it.
  struct OrderedVersion {
    Precedence precedence;
    Position position;
  };

  CatalogueIndex(const std::vector<CatalogueMetamodel>& metamodels,
                 const std::vector<pathfinder::Hop>& hops);

  /// The metamodels of one version: those that carry it and, when it is semantic, those whose text
  /// version is said to be equivalent to it.
  const Positions& metamodelsAt(const std::u16string& name,
                                const pathfinder::VersionId& version) const;

  /// The metamodels that `range` admits (see `admits`).
  Positions metamodelsIn(const std::u16string& name, const pathfinder::VersionRange& range) const;

  const Positions& hopsFrom(const std::u16string& name, const pathfinder::VersionId& version) const;

  /// All metamodels and all hops of a name; none for one that is not there.
  const Positions& metamodelsOf(const std::u16string& name) const;
  const Positions& hopsOf(const std::u16string& name) const;

  bool hasMetamodel(const std::u16string& name) const { return ordered_.contains(name); }

  /// All versions of a name that have a precedence, ascending; empty for a name that is not there.
  const std::vector<OrderedVersion>& orderedVersions(const std::u16string& name) const;

  /// How the versions of a name are shown to the path finder.
  const VersionScale& scale(const std::u16string& name) const;

 private:
  struct VersionKey {
    std::u16string name;
    pathfinder::VersionId version;
  };

  /// A key to look up with, without copying.
  struct VersionKeyView {
    const std::u16string& name;
    const pathfinder::VersionId& version;
  };

  struct VersionKeyHash {
    using is_transparent = void;
    std::size_t operator()(const VersionKey& key) const noexcept;
    std::size_t operator()(const VersionKeyView& key) const noexcept;
  };

  struct SameVersionKey {
    using is_transparent = void;
    template <class Left, class Right>
    bool operator()(const Left& left, const Right& right) const {
      return left.name == right.name && left.version == right.version;
    }
  };

  using ByVersion = std::unordered_map<VersionKey, Positions, VersionKeyHash, SameVersionKey>;

  Positions metamodelsInAny(const std::u16string& name,
                            const std::vector<pathfinder::VersionRange>& ranges) const;

  ByVersion metamodels_;
  ByVersion hops_;
  std::unordered_map<std::u16string, Positions> metamodelsByName_;
  std::unordered_map<std::u16string, Positions> hopsByName_;
  std::unordered_map<std::u16string, std::vector<OrderedVersion>> ordered_;
  std::unordered_map<std::u16string, VersionScale> scales_;  // those of names with their own
};

}  // namespace tarn::evolution::catalogue
