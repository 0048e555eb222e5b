#pragma once

#include <span>
#include <unordered_set>
#include <vector>

#include "pathfinder/linking/selection_combination.hpp"
#include "pathfinder/search/search_host.hpp"
#include "pathfinder/values/unordered_hash.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// The baselines that a search has told of in its trace. Who takes a question over from another
/// engine does not tell of them again.
using TriedBaselines = std::unordered_set<VersionBaseline, UnorderedHash>;

/// Writes the record that a baseline is tried.
void traceTrying(const VersionBaseline& baseline);

/// What every search engine is asked. Refers to the caller's lists.
struct SearchQuestion {
  SearchHost& host;
  const std::vector<VersionBaseline>& sources;
  const std::vector<VersionBaseline>& targets;
  Direction direction;
  std::span<const KnownMetamodel> known = {};  ///< need not be asked for again
  TriedBaselines* tried = nullptr;             ///< shared by the engines of one search; may be null

  /// Writes the record that a baseline is tried, unless `tried` has it.
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
