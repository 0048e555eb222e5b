#pragma once

#include <optional>
#include <span>
#include <vector>

#include "pathfinder/learning/free_versions.hpp"
#include "pathfinder/learning/plan_network.hpp"
#include "pathfinder/learning/plan_solver.hpp"
#include "pathfinder/learning/smallest_conflict.hpp"

namespace tarn::evolution::pathfinder {

/// The ways of all names of a dependency space with open ends, whether what they hold could be held
/// with other names beside them or not. `requirements`: what versions leave each other.
std::optional<PlanNetwork> networkOfAll(
    const DependencySpace& dependencies,
    const std::vector<Compatibility::Requirement>& requirements);

/// Finds out which names of a dependency space with open ends block one another: the others being
/// free, no plan brings those that have a target there.
class BlockingNames final : public SmallestConflict::Judge {
 public:
  BlockingNames(const DependencySpace& dependencies, FreeVersions& free);

  /// Whether a plan brings all of these names there.
  bool canArrive(const ChosenItems& names);

  bool agree(ChosenItems& names) override;
  void reduce(ChosenItems& names) override;

  /// Sets of versions that cannot be held together, which suffice for the names to block one
  /// another, though any part of these does not.
  std::vector<std::vector<VersionIndex>> proof(const ChosenItems& names);

 private:
  void beginAtSource(PlanSolver& plans) const;
  Literal arrival(PlanSolver& plans, NameIndex name) const;
  bool learnFromPlan();
  bool learnFrom(const std::vector<VersionIndex>& held);
  std::vector<NodeIndex> nodesOf(std::span<const VersionIndex> versions) const;
  std::vector<std::vector<VersionIndex>> conflictsAmong(const ChosenItems& names) const;

  const DependencySpace& dependencies_;
  const SearchSpace& space_;
  FreeVersions& free_;
  PlanNetwork network_;
  PlanSolver plans_;
  std::vector<Literal> arrives_;  // by name: the plan is about it and its target
  ChosenItems arrived_;           // in the plan found last
  std::vector<std::vector<VersionIndex>> conflicts_;  // met in plans
};

}  // namespace tarn::evolution::pathfinder
