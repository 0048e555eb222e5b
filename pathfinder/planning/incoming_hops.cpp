// The moves of the space turned round, as a table in compressed rows: sorted by where they lead to,
// with the start of each version's row. Equal moves are one.

#include "pathfinder/planning/incoming_hops.hpp"

#include <algorithm>

#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

IncomingHops::IncomingHops(const SearchSpace& space, const AllVersionBounds& bounds) {
  hops_.reserve(space.moves.size());
  for (VersionIndex before = 0; before < space.versions.size(); ++before) {
    if (!bounds[before].isReachable) continue;
    for (const SearchSpace::Move& move : space.versions[before].moves) {
      hops_.push_back({move.target, before, hopWeight(move.expensive)});
    }
  }
  std::sort(hops_.begin(), hops_.end());
  hops_.erase(std::unique(hops_.begin(), hops_.end()), hops_.end());
  starts_.reserve(space.versions.size() + 1);
  std::size_t next = 0;
  for (VersionIndex version = 0; version < space.versions.size(); ++version) {
    starts_.push_back(next);
    while (next < hops_.size() && hops_[next].target == version) ++next;
  }
  starts_.push_back(next);
}

}  // namespace tarn::evolution::pathfinder
