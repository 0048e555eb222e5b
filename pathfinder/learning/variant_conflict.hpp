#pragma once

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "pathfinder/learning/sat_solver.hpp"
#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/selection_table.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// Which versions of a selection cannot be held together, although every two of them can.
class VariantConflict {
 public:
  VariantConflict(const SearchSpace& space, SelectionView selection);

  /// An irreducible set of versions that have no linked metamodels which agree, as the names that
  /// hold them; no value when all agree.
  std::optional<std::vector<NameIndex>> find();

  /// The same beside the linked metamodels of a target; an empty set when these cannot be held at
  /// all.
  std::optional<std::vector<NameIndex>> findBeside(const VersionBaseline& target);

 private:
  Literal isHeld(NameIndex name, VariantIndex variant);
  void addVersion(NameIndex name, VersionIndex version);
  VariantIndex variantOf(NameIndex name, const LinkedMetamodel& linked) const;
  std::optional<std::vector<NameIndex>> findUnder(const std::vector<Literal>& fixed);

  const SearchSpace& space_;
  SatSolver solver_;
  std::vector<Literal> wanted_;  // by name: that it holds a variant of its version

  // By name; what `none` stands for is that the name is absent.
  std::vector<std::unordered_map<VariantIndex, Literal>> isHeld_;
};

}  // namespace tarn::evolution::pathfinder
