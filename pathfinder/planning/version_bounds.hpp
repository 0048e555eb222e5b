#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// What any way from a source to one version takes at least: an admissible bound, for which the
/// version's name is taken alone but for `ordinarySteps`.
struct VersionBounds {
  bool isReachable = false;  ///< otherwise it lies on no path

  /// The least weights of hops from a source's version, or from one that a link brings in.
  std::uint64_t distance = 0;

  /// How many steps with an ordinary hop a path has before it can hold the version, if it reaches
  /// it by a cheapest way: at least as many as ordinary hops on that way, and as many as the names
  /// that have to make room need for it.
  std::uint32_t ordinarySteps = 0;

  /// The same for any path, also one with more expensive hops than it need have.
  std::uint32_t ordinaryStepsEver = 0;

  /// The cheapest way to the version, from its end: the weight of the last hop (0 when there is
  /// none), and the version before it. Of several such ways the one that comes first when weights
  /// are compared from the end, heavier first, as far as `lookahead` hops tell.
  std::uint64_t lastHop = 0;
  VersionIndex before = 0;
  std::uint32_t hops = 0;  ///< how many
};

/// By the versions' indices.
using AllVersionBounds = std::vector<VersionBounds>;

/// How many steps bounds look ahead one by one. Any number is right, for what lies further ahead
/// counts as heavier than anything; but the first steps that differ decide which plan is pursued.
inline constexpr std::uint32_t lookahead = 64;

/// How many hops of the cheapest way bounds look at.
inline std::uint32_t hopsAhead(const VersionBounds& bounds) {
  return std::min(bounds.hops, lookahead);
}

/// Calls `visit(weight)` for the hops of the cheapest way to a version, the last one first, as many
/// as bounds look at.
template <class Visit>
void visitHopsAhead(const AllVersionBounds& all, VersionIndex version, const Visit& visit) {
  const VersionBounds* bounds = &all[version];
  for (std::uint32_t left = hopsAhead(*bounds); left > 0; --left, bounds = &all[bounds->before]) {
    visit(bounds->lastHop);
  }
}

/// Whether, of the cheapest ways to two versions, the first is heavier where they first differ.
bool isHeavierFromEnd(const AllVersionBounds& all, VersionIndex left, VersionIndex right);

AllVersionBounds computeVersionBounds(const SearchSpace& space, const Compatibility& compatibility);

}  // namespace tarn::evolution::pathfinder
