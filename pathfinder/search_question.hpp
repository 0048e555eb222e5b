#pragma once

#include <vector>

#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// What `getMetamodel` answered while a question was put together, and what it was linked to.
/// Refers to what its caller keeps.
struct KnownMetamodel {
  const std::u16string* name;
  const VersionId* version;  ///< what was asked for
  const Metamodel* metamodel;
  const std::vector<std::shared_ptr<LinkedMetamodel>>* linked;  ///< in the repository's own list
};

class TriedBaselines;

/// What every search engine is asked. Refers to the caller's lists.
struct SearchQuestion {
  VersionRepository& repository;
  const std::vector<VersionBaseline>& sources;
  const std::vector<VersionBaseline>& targets;
  VersionRepository::Direction direction;
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
