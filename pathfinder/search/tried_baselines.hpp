#pragma once

#include <unordered_set>

#include "pathfinder/values/unordered_hash.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// The baselines that a search has told of in its trace. Who takes a question over from another
/// engine does not tell of them again.
class TriedBaselines {
 public:
  /// Writes the record that a baseline is tried, unless one was written before.
  void trace(const VersionBaseline& baseline);

 private:
  std::unordered_set<VersionBaseline, UnorderedHash> told_;
};

}  // namespace tarn::evolution::pathfinder
