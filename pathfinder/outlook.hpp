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

  /// The retreat: the hops of a cheapest way back, the heaviest possible first. This is the weight
  /// of the first one (0 when there is none), and where the retreat goes on.
  std::uint64_t retreatHop = 0;
  VersionIndex retreatTo = 0;
  std::uint32_t retreatLength = 0;
};

/// The outlooks of all versions of a space, by their indices.
using Outlooks = std::vector<Outlook>;

/// Calls `visit(weight)` for each hop of a version's retreat.
template <class Visit>
void visitRetreat(const Outlooks& outlooks, VersionIndex version, const Visit& visit) {
  for (const Outlook* outlook = &outlooks[version]; outlook->retreatHop != 0;
       outlook = &outlooks[outlook->retreatTo]) {
    visit(outlook->retreatHop);
  }
}

/// Whether the first version's retreat is lexicographically heavier than the second one's.
bool hasHeavierRetreat(const Outlooks& outlooks, VersionIndex left, VersionIndex right);

Outlooks computeOutlooks(const SearchSpace& space, const Coexistence& coexistence,
                         const std::vector<VersionSelection>& sources);

}  // namespace tarn::evolution::pathfinder
