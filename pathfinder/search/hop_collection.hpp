#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pathfinder/search/search_host.hpp"

namespace tarn::evolution::pathfinder {

/// The hops that may move one metamodel of a baseline.
struct MetamodelHops {
  std::u16string name;
  std::vector<Hop> hops;
};

/// The hops that may move each metamodel of a baseline, in the order in which they were collected.
struct HopChoices {
  std::vector<MetamodelHops> byName;

  /// The combinations of each metamodel taking one of its hops or none; that all take none is one
  /// of them. Wraps at 64 bits.
  std::uint64_t combinationCount = 1;
};

/// Adds to `choices` the hops that leave `linked`, which the baseline holds under `name`, and do
/// not go against `direction`. When it throws, `choices` is unchanged.
void collectHops(SearchHost& host, Direction direction, const std::u16string& name,
                 const LinkedMetamodel& linked, HopChoices& choices);

}  // namespace tarn::evolution::pathfinder
