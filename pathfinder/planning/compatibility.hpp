#pragma once

#include <cstdint>
#include <vector>

#include "pathfinder/planning/bit_row.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// Which two versions of different names can stand together in a baseline.
///
/// They can when some linked metamodel of the one agrees with some linked metamodel of the other on
/// every name that both hold, and no requirement of either excludes the other. "Absent" disagrees
/// with whatever holds the name. Kept are only pairs of names that have something to say, the
/// neighbours: names whose closures share nothing always can stand together, and for many others it
/// follows from what each of them has with a third (see `followsFrom`).
///
/// Memory is one bit row for each version and neighbour of its name.
class Compatibility {
 public:
  explicit Compatibility(const SearchSpace& space);

  using Requirement = SearchSpace::Requirement;

  /// The same for a space without variants in which every name is held from start to end: two
  /// versions can stand together unless a requirement of one of them excludes the other.
  Compatibility(const SearchSpace& space, const std::vector<Requirement>& requirements);

  /// The names that a name may disagree with, ascending.
  const std::vector<NameIndex>& neighbours(NameIndex name) const { return neighbours_[name]; }

  /// The versions of the i-th neighbour of the version's name that can stand beside it.
  ConstBitRow row(VersionIndex version, std::size_t neighbour) const {
    const NameIndex name = space_.versions[version].name;
    return {rows_.data() + rowStart_[version] + rowOffset_[name][neighbour],
            space_.names[neighbours_[name][neighbour]].words()};
  }

 private:
  /// The variants that a closure holds under the names that two names share, `none` where it holds
  /// none.
  using Projection = std::vector<VariantIndex>;

  std::vector<bool> linkedNames() const;
  void surveyClosures();
  void findNeighbours();
  NameIndex linkedBy(NameIndex name) const;
  bool followsFromThird(NameIndex left, NameIndex right) const;
  bool followsFrom(NameIndex third, NameIndex left, NameIndex right,
                   const std::vector<NameIndex>& shared) const;
  bool alwaysHolds(NameIndex holder, NameIndex held) const;
  bool holds(NameIndex holder, NameIndex held) const;
  std::vector<NameIndex> sharedNames(NameIndex left, NameIndex right) const;

  void addNeighbours(const std::vector<Requirement>& requirements);
  void layOutRows();
  void require(const Requirement& requirement);
  void fillRows(NameIndex name, NameIndex neighbour);
  void admitLinked(NameIndex linking, NameIndex linked);
  void admitAgreeing(NameIndex left, NameIndex right);
  void admitUnknown(NameIndex name, NameIndex neighbour);
  bool anyWithout(NameIndex name, NameIndex other) const;
  std::vector<std::vector<Projection>> projectAll(NameIndex name, NameIndex without,
                                                  const std::vector<NameIndex>& shared) const;
  void admit(VersionIndex left, VersionIndex right);
  BitRow mutableRow(VersionIndex version, NameIndex neighbour);

  /// What the closures of a name's versions hold; empty for a name that has no links at all.
  struct Holdings {
    std::vector<NameIndex> any;     ///< names in some closure, ascending; its own among them
    std::vector<NameIndex> always;  ///< names in every closure, ascending; its own among them
    bool isSingle = true;           ///< whether every version has just one linked metamodel
  };

  const SearchSpace& space_;
  std::vector<Holdings> holdings_;
  std::vector<std::vector<NameIndex>> neighbours_;
  std::vector<std::vector<std::size_t>> rowOffset_;  // of each neighbour, within a version's rows
  std::vector<std::size_t> rowStart_;                // of each version
  std::vector<BitWord> rows_;
};

}  // namespace tarn::evolution::pathfinder
