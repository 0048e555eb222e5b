#pragma once

#include <optional>
#include <string>
#include <vector>

#include "catalogue/explanation/named_version.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::catalogue {

/// What a selected version asks of another metamodel: "paint 1.0.0 -> brush 1.2.0 needs shape
/// [1.0.0, 2.0.0)".
struct Requirement {
  /// From the selected version along its dependencies to the one that has the requirement; each
  /// stands for one of the versions that the dependency before it admits. Never empty.
  std::vector<NamedVersion> chain;

  std::u16string name;  ///< of the metamodel that is required

  /// None: the chain is that metamodel itself, as it was selected.
  std::optional<pathfinder::VersionRange> range;

  bool isOptional = false;  ///< only if it is there
};

/// Metamodels that cannot stand together: all together, that is; without any one of them the others
/// can.
struct Clash {
  std::vector<std::u16string> parties;  ///< ascending

  /// The metamodel of which no version, or no linked variant, suits all parties; empty when they
  /// disagree only on several metamodels taken together.
  std::u16string contested;

  /// What the parties ask of the contested metamodel, or else of several, in each of the ways in
  /// which they can be linked: enough to exclude every version; by party, without repetition. Where
  /// versions are at odds that are not linked, the requirements that lead from the parties to it,
  /// one after the other.
  std::vector<Requirement> requirements;

  bool isMissing = false;  ///< the contested metamodel is not there, and nothing brings it in
};

/// Why a version cannot be linked.
struct Unlinkable {
  /// From the version in question along its dependencies to the one whose own dependencies are at
  /// fault. Never empty.
  std::vector<NamedVersion> chain;

  /// The dependency of the last in the chain that nothing satisfies, with the nearest versions that
  /// its metamodel has; or else the clash between its dependencies.
  std::optional<pathfinder::Dependency> unmet;
  std::vector<pathfinder::VersionId> nearestVersions;
  std::optional<Clash> clash;
};

}  // namespace tarn::evolution::catalogue
