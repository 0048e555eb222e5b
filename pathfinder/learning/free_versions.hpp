#pragma once

#include <map>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "pathfinder/learning/dependency_space.hpp"
#include "pathfinder/learning/own_names.hpp"
#include "pathfinder/learning/sat_solver.hpp"
#include "pathfinder/learning/selection_host.hpp"

namespace tarn::evolution::pathfinder {

/// Which versions of a dependency space can be held together when all names that are not spoken of
/// are free: these may have any version that the application knows, wherever hops lead.
class FreeVersions {
 public:
  /// Asks the application for whatever the versions of the space can bring in. Throws what it
  /// throws.
  FreeVersions(SelectionHost& host, const DependencySpace& dependencies);

  /// What each two names leave each other, in so far as it follows from single free names.
  std::vector<Compatibility::Requirement> requirements() const;

  /// Versions among these, each of another name, that cannot be held together, though any part of
  /// them can; empty when all of them can be.
  std::vector<VersionIndex> findConflict(std::span<const VersionIndex> versions);

 private:
  using FreeName = std::uint32_t;     // a name that may be held, of the space or not
  using FreeVersion = std::uint32_t;  // a version of one, those of the space first
  using Possible = std::map<FreeName, std::vector<bool>>;  // versions, by their rank; else all

  using Need = NeedingVersion::Need;

  struct Version {
    FreeName name;
    std::size_t rank;
    const Metamodel* descriptor;
    std::vector<Need> needs = {};
    Literal held = 0;
  };

  FreeName nameOf(const std::u16string& text);
  FreeVersion versionOf(const Metamodel& descriptor);
  void addNeeds(SelectionHost& host, FreeVersion version);
  void formulate();
  Possible possibleBeside(VersionIndex version) const;
  bool narrow(FreeName name, Possible& possible, std::vector<FreeName>& changed) const;
  std::vector<bool> admittedByAll(FreeName name, FreeName needed, const Possible& possible) const;

  const SearchSpace& space_;
  std::map<std::u16string, FreeName> names_;
  std::vector<std::vector<FreeVersion>> versionsOf_;  // by name
  std::unordered_map<Metamodel, FreeVersion> known_;
  std::vector<Version> versions_;
  std::vector<std::pair<FreeVersion, Need>> optional_;  // what versions require only if it is held
  SatSolver solver_;
};

}  // namespace tarn::evolution::pathfinder
