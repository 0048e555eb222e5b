#pragma once

#include <cstdint>
#include <vector>

#include "pathfinder/coexistence.hpp"
#include "pathfinder/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// What is known of one version's way back to the sources, its name taken alone but for the
/// arrival.
struct Outlook {
  bool arrives = false;  ///< a version that never arrives lies on no path

  /// The least weights of hops from a source's version, or from one that a link brings in.
  std::uint64_t distance = 0;

  /// How many steps with an ordinary hop the path has before it can hold the version: at least as
  /// many as ordinary hops on the cheapest way, and as many as its neighbours need to make room.
  std::uint32_t ordinarySteps = 0;

  /// The weights of the hops of a cheapest way back, the heaviest possible first.
  std::vector<std::uint64_t> retreat;
};

/// The outlook of every version of a space, by its index.
std::vector<Outlook> computeOutlooks(const SearchSpace& space, const Coexistence& coexistence,
                                     const std::vector<VersionSelection>& sources);

}  // namespace tarn::evolution::pathfinder
