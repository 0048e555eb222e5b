#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/linking/selection_combination.hpp"
#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// A search space that is made from what versions depend on, without linking them: where products
/// of dependencies have too many linked metamodels to be made.
///
/// For questions between two selections that are closed: whatever a version on the way depends on
/// is held from start to end. Then one version of each name tells which linked metamodels are
/// meant, and a selection can be held if each version has what it depends on beside it.
struct DependencySpace {
  /// Asks the application, once for each version that hops reach. Throws what it throws, and
  /// InvalidFamilyVersion for a selected version that it does not know. No value when the question
  /// is of another kind.
  static std::optional<DependencySpace> survey(SelectionHost& host, const VersionsByName& from,
                                               const VersionsByName& to);

  std::unique_ptr<SearchSpace> space = std::make_unique<SearchSpace>();
  std::vector<Compatibility::Requirement> requirements;

  /// The version of each name of the target; none for one that it leaves free.
  VersionSelection target;

  Direction direction = Direction::Unknown;

  /// What each version depends on, as names of the space, in the order of its dependencies.
  std::vector<std::vector<NameIndex>> dependencies;

  // What versions point to.
  std::deque<Metamodel> descriptors;
  std::deque<std::vector<Hop>> hops;
};

}  // namespace tarn::evolution::pathfinder
