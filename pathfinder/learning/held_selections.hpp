#pragma once

#include <vector>

#include "pathfinder/learning/dependency_space.hpp"
#include "pathfinder/learning/sat_solver.hpp"
#include "pathfinder/planning/selection_table.hpp"

namespace tarn::evolution::pathfinder {

/// The selections of a dependency space that hold what their versions need, as a formula: a literal
/// for each version, at most one of which is true for each name.
class HeldSelections {
 public:
  /// Refers to the space.
  explicit HeldSelections(const DependencySpace& dependencies);

  /// Whether a selection holds the version. Then `selection` is one.
  bool canHold(VersionIndex version);
  VersionSelection selection() const;

  /// By version, whether some selection holds it.
  std::vector<bool> versionsThatCanBeHeld();

  /// Leaves out the selections that hold the version.
  void forbid(VersionIndex version) { solver_.addClause({-isHeld_[version]}); }

 private:
  const SearchSpace& space_;
  SatSolver solver_;
  std::vector<Literal> isHeld_;  // by version
};

}  // namespace tarn::evolution::pathfinder
