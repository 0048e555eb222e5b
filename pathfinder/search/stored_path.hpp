#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "pathfinder/hop.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// A path kept in little room: the baseline that it starts from and what each step changes. Most
/// steps add no name and change few.
///
/// Not to be changed, so that any number of threads may restore it.
class StoredPath {
 public:
  /// `start` is what the first step's `from` was copied from, and each later `from` is a copy of
  /// the `to` before it.
  StoredPath(std::shared_ptr<const VersionBaseline> start, const std::vector<BaselineHop>& path);

  /// A copy of the path, in all that can be told of it: its maps also yield their entries in the
  /// same order, so that texts and hashes are the same.
  std::vector<BaselineHop> restore() const;

 private:
  class Step {
   public:
    explicit Step(const BaselineHop& step);

    BaselineHop applyTo(const VersionBaseline& from) const;

   private:
    /// What stands at a place of the map, in its own order.
    using Change = std::pair<std::size_t, std::shared_ptr<LinkedMetamodel>>;

    std::vector<LockstepHop::value_type> hops_;  // the last of the map first
    std::size_t hopBuckets_;
    std::vector<Change> changes_;                // in ascending order of places
    std::unique_ptr<const VersionBaseline> to_;  // where changes in place do not make it
  };

  std::shared_ptr<const VersionBaseline> start_;
  std::vector<Step> steps_;
};

}  // namespace tarn::evolution::pathfinder
