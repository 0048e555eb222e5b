#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/step_problem.hpp"

namespace tarn::evolution::pathfinder {

/// How far planning backward may go.
struct PlanningBudget {
  /// Thrown when that is not far enough.
  struct Spent {};

  static constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

  /// How much may be done, where to look at what one name does in a step is one, and a node of the
  /// search `nodeEffort` at least. Bounds the memory as well.
  std::uint64_t effort = unlimited;

  /// Whether the space holds every plan, so that what is proven in it may be told.
  bool isSpaceComplete = false;
};

/// What a node costs in whatever names there are: taking it from the queue, and putting its
/// children there.
inline constexpr std::uint64_t nodeEffort = 60;

/// How many hops lie before a target, as far as the cheapest ways of single names tell.
std::uint64_t hopsBefore(const PlanningGround& ground, const VersionSelection& target);

/// An effort that takes less time than planning by learning, so that to have tried in vain costs
/// little: learning takes about three microseconds for each version and step of the plan, and the
/// effort for these a tenth of that.
std::uint64_t effortBesideLearning(const PlanningGround& ground,
                                   const std::vector<VersionSelection>& targets);

}  // namespace tarn::evolution::pathfinder
