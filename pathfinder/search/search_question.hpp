#pragma once

#include <vector>

#include "pathfinder/linking/selection_combination.hpp"
#include "pathfinder/search/search_host.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

class TriedBaselines;

/// What every search engine is asked. Refers to the caller's lists.
struct SearchQuestion {
  SearchHost& host;
  const std::vector<VersionBaseline>& sources;
  const std::vector<VersionBaseline>& targets;
  Direction direction;
  std::vector<KnownMetamodel> known = {};  ///< need not be asked for again
  TriedBaselines* tried = nullptr;         ///< shared by the engines of one search; may be null

  /// Writes the record that a baseline is tried, unless an engine has written it already.
  void traceTrying(const VersionBaseline& baseline) const;

  /// The first target, in list order, that the baseline includes; null when there is none.
  const VersionBaseline* targetIn(const VersionBaseline& baseline) const;
};

/// What a search engine answers.
struct SearchAnswer {
  enum class Verdict {
    Found,      ///< this is the path
    NoPath,     ///< there is none
    Unsettled,  ///< the engine cannot tell; another one has to
  };

  Verdict verdict = Verdict::NoPath;

  // When found:
  std::vector<BaselineHop> steps = {};      ///< empty when a source includes the target
  const VersionBaseline* source = nullptr;  ///< the element of the question that the path starts at
  const VersionBaseline* target = nullptr;  ///< the element that the last baseline includes
};

}  // namespace tarn::evolution::pathfinder
