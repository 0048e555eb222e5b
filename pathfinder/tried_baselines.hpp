#pragma once

#include <unordered_set>

#include "pathfinder/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// The baselines that a search has told of in its trace. Who takes a question over from another
/// engine does not tell of them again.
class TriedBaselines {
 public:
  /// Writes the record that a baseline is tried, unless one was written before.
  void trace(const VersionBaseline& baseline);

 private:
  std::unordered_set<VersionBaseline, VersionRepository::KeyHasherVersionBaselineUnordered> told_;
};

}  // namespace tarn::evolution::pathfinder
