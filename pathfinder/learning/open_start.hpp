#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// Where plans may begin when that is left open: at any consistent choice of one version for each
/// name. Stands for a list of sources that would be too long to be made.
class OpenStart {
 public:
  /// Chooses one of some versions, which may hold `none` for one that is not in the space; returns
  /// its place.
  using Decide = std::function<std::size_t(std::span<const VersionIndex>)>;

  /// The versions that each name may begin with.
  virtual const std::vector<std::vector<VersionIndex>>& versions() const = 0;

  /// Asks for one choice after the other, as they decide on a source's place in the list, the most
  /// significant first: the first version that can be chosen makes the first source.
  virtual void visitChoices(const Decide& decide) const = 0;

 protected:
  ~OpenStart() = default;
};

}  // namespace tarn::evolution::pathfinder
