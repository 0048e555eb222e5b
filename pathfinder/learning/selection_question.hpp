#pragma once

#include <optional>

#include "pathfinder/linking/selection_combination.hpp"
#include "pathfinder/search/direction.hpp"

namespace tarn::evolution::pathfinder {

/// A question between two selections, of which nothing need be linked.
struct SelectionQuestion {
  const VersionsByName& from;
  const VersionsByName& to;
  std::optional<Direction> direction = {};  ///< otherwise that between the first baselines
};

}  // namespace tarn::evolution::pathfinder
