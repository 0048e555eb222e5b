#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// How links bring in the names that a selection leaves open.
///
/// A name is brought in exactly when a version of the selection, or one that is brought in itself,
/// depends on it, and at a version that all these admit.
class LinkChoices {
 public:
  /// Versions of open names that one choice brings in.
  using Group = std::vector<VersionIndex>;

  /// Chooses one of several groups; returns its place, or the number of groups if none is possible.
  using Decide = std::function<std::size_t(std::span<const Group>)>;

  /// The names that a version depends on itself, not only through others.
  virtual std::span<const NameIndex> needsOf(VersionIndex version) const = 0;

  /// Asks for one choice after the other, as they decide on the place of a baseline among those
  /// that a selection stands for, the most significant first: the first group that can be chosen
  /// makes the first baseline. `selection` holds `none` for each name that is open.
  virtual void visitChoices(VersionSelection selection, const Decide& decide) const = 0;

 protected:
  ~LinkChoices() = default;
};

/// Where plans may begin when a selection leaves open what it brings in. Stands for a list of
/// sources that would be too long to be made.
struct OpenStart {
  std::vector<std::vector<VersionIndex>> versions;  ///< that each name may begin with
  VersionSelection selection;                       ///< `none` for a name that is open
};

}  // namespace tarn::evolution::pathfinder
