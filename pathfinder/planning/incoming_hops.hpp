#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/version_bounds.hpp"

namespace tarn::evolution::pathfinder {

/// A way into a version.
struct IncomingHop {
  VersionIndex target;
  VersionIndex before;
  std::uint64_t weight;

  auto operator<=>(const IncomingHop&) const = default;
};

/// The hops of a space by the version that they lead to, from versions that can be held. Equal hops
/// are one: which of them is taken is decided when a plan is carried out.
class IncomingHops {
 public:
  IncomingHops(const SearchSpace& space, const AllVersionBounds& bounds);

  std::span<const IncomingHop> into(VersionIndex version) const {
    return std::span(hops_).subspan(starts_[version], starts_[version + 1] - starts_[version]);
  }

 private:
  std::vector<IncomingHop> hops_;    // ascending
  std::vector<std::size_t> starts_;  // of each version's hops, and the end
};

}  // namespace tarn::evolution::pathfinder
