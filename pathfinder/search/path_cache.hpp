#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "pathfinder/hop.hpp"
#include "pathfinder/search/reader_writer_lock.hpp"
#include "pathfinder/search/stored_path.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// The paths found so far, by the source that they start from and the target asked for.
///
/// A path that was stored is never replaced; all go together. Every operation may be called from
/// any thread; one that cannot lock throws std::system_error. Baselines are hashed, paths copied
/// and what is forgotten destroyed without the lock.
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
  using Key = std::shared_ptr<const VersionBaseline>;

  /// A baseline with its hash.
  struct Asked {
    const VersionBaseline* baseline;
    std::size_t hash;
  };

  struct KeyHash {
    using is_transparent = void;
    std::size_t operator()(const Key& key) const noexcept;
    std::size_t operator()(const Asked& asked) const noexcept { return asked.hash; }
  };

  struct SameBaseline {
    using is_transparent = void;
    bool operator()(const Key& left, const Key& right) const { return *left == *right; }
    bool operator()(const Asked& asked, const Key& key) const { return *asked.baseline == *key; }
  };

  template <class Value>
  using ByBaseline = std::unordered_map<Key, Value, KeyHash, SameBaseline>;
  using PathsByTarget = ByBaseline<std::shared_ptr<const StoredPath>>;

  static std::vector<Asked> hashed(const std::vector<VersionBaseline>& baselines);
  std::shared_ptr<const StoredPath> lookUp(const std::vector<Asked>& sources,
                                           const std::vector<Asked>& targets) const;

  std::atomic<bool> isEmpty_{true};  // so that whoever finds it need not lock
  ByBaseline<PathsByTarget> pathCache_;
  ReaderWriterLock<> cacheLock_;  // guards pathCache_ and changes of isEmpty_
};

}  // namespace tarn::evolution::pathfinder
