#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "pathfinder/hop.hpp"
#include "pathfinder/reader_writer_lock.hpp"
#include "pathfinder/version_baseline.hpp"
#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// The paths found so far, by the source that they start from and the target asked for.
///
/// A path that was stored is never replaced; all go together. Every operation may be called from
/// any thread; one that cannot lock throws std::system_error.
class PathCache {
 public:
  /// The path of the first pair, in list order, that has one.
  std::optional<std::vector<BaselineHop>> find(const std::vector<VersionBaseline>& sources,
                                               const std::vector<VersionBaseline>& targets);

  /// Stores a path, which is not empty, under its first baseline and `target`, unless there is one.
  void store(const std::vector<BaselineHop>& path, const VersionBaseline& target);

  void clear();

 private:
  struct Step {
    LockstepHop hops;
    VersionBaseline to;
  };

  template <class Value>
  using ByBaseline = std::unordered_map<VersionBaseline, Value,
                                        VersionRepository::KeyHasherVersionBaselineUnordered>;

  /// A path without the baseline that it starts from.
  using Steps = std::vector<Step>;

  std::optional<std::vector<BaselineHop>> lookUp(const std::vector<VersionBaseline>& sources,
                                                 const std::vector<VersionBaseline>& targets) const;

  ByBaseline<ByBaseline<Steps>> pathCache_;
  ReaderWriterLock<> cacheLock_;  // guards pathCache_ and nothing else
};

}  // namespace tarn::evolution::pathfinder
