#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// The hops that may move one metamodel of a baseline.
struct MetamodelHops {
  std::u16string name;
  std::vector<Hop> hops;
};

/// The hops that may move each metamodel of a baseline, in the order in which they were collected.
struct HopChoices {
  std::vector<MetamodelHops> byName;

  /// In how many ways each metamodel can take one of its hops or none. Wraps at 64 bits.
  std::uint64_t permutationCount = 1;
};

/// Adds to `choices` the hops that leave `linked`, which the baseline holds under `name`, and do
/// not go against `direction`. When it throws, `choices` is unchanged.
void collectHops(VersionRepository& repository, VersionRepository::Direction direction,
                 const std::u16string& name, const LinkedMetamodel& linked, HopChoices& choices);

}  // namespace tarn::evolution::pathfinder
