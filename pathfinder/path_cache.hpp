#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
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

  /// Stores a path, which is not empty, under the source that it starts from and the target asked
  /// for, unless there is one.
  void store(const std::vector<BaselineHop>& path, VersionBaseline&& source,
             VersionBaseline&& target);

  void clear();

 private:
  /// What a step makes of the baseline before it. Most steps add no name and change few, so that
  /// just these are kept.
  struct Step {
    explicit Step(const BaselineHop& step);

    BaselineHop applyTo(const VersionBaseline& from) const;

    std::vector<LockstepHop::value_type> hops;
    std::vector<std::pair<std::u16string, std::shared_ptr<LinkedMetamodel>>> changes;
    std::optional<VersionBaseline> to;  ///< if it has names of its own
  };

  template <class Value>
  using ByBaseline = std::unordered_map<VersionBaseline, Value,
                                        VersionRepository::KeyHasherVersionBaselineUnordered>;

  /// A path without the baseline that it starts from.
  using Steps = std::vector<Step>;

  static std::vector<BaselineHop> makePath(const VersionBaseline& source, const Steps& steps);
  std::optional<std::vector<BaselineHop>> lookUp(const std::vector<VersionBaseline>& sources,
                                                 const std::vector<VersionBaseline>& targets) const;

  ByBaseline<ByBaseline<Steps>> pathCache_;
  ReaderWriterLock<> cacheLock_;  // guards pathCache_ and nothing else
};

}  // namespace tarn::evolution::pathfinder
