// Two levels of hash tables, sources and then targets. A question with many sources and targets
// looks each of them up once, by hashes that were computed before the lock was taken.

#include "pathfinder/search/path_cache.hpp"

#include <mutex>
#include <ostream>
#include <shared_mutex>

#include "messages/trace.hpp"
#include "pathfinder/values/unordered_hash.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::isTraced;
using diagnostics::trace;
using diagnostics::TraceLevel;
using diagnostics::traceValue;

namespace {

void traceHit(const StoredPath& path) {
  if (!isTraced(TraceLevel::Reasoning)) return;
  traceValue("Found Path in cache");
  for (const BaselineHop& step : path.restore()) traceValue(step.to);
}

void traceStore(const std::vector<BaselineHop>& path) {
  constexpr TraceLevel level = TraceLevel::CacheStore;
  trace(level, [](std::ostream& out) { out << "Emplace Path to cache:"; });
  trace(level, [&](std::ostream& out) { out << path.front().from; });
  for (const BaselineHop& step : path) {
    trace(level, [&](std::ostream& out) { out << "\t-> " << step.to; });
  }
  trace(level, [](std::ostream& out) { out << "END OF PATH"; });
}

}  // namespace

std::size_t PathCache::KeyHash::operator()(const Key& key) const noexcept {
  return UnorderedHash()(*key);
}

std::vector<PathCache::Asked> PathCache::hashed(const std::vector<VersionBaseline>& baselines) {
  const UnorderedHash hash;
  std::vector<Asked> result;
  result.reserve(baselines.size());
  for (const VersionBaseline& baseline : baselines) result.push_back({&baseline, hash(baseline)});
  return result;
}

std::optional<std::vector<BaselineHop>> PathCache::find(
    const std::vector<VersionBaseline>& sources, const std::vector<VersionBaseline>& targets) {
  if (isEmpty_.load(std::memory_order_relaxed)) return std::nullopt;
  const std::vector<Asked> from = hashed(sources);
  const std::vector<Asked> to = hashed(targets);
  std::shared_ptr<const StoredPath> path;
  {
    const std::shared_lock lock(cacheLock_);
    path = lookUp(from, to);
    if (path) traceHit(*path);
  }
  if (!path) return std::nullopt;
  return path->restore();
}

std::shared_ptr<const StoredPath> PathCache::lookUp(const std::vector<Asked>& sources,
                                                    const std::vector<Asked>& targets) const {
  for (const Asked& source : sources) {
    const auto outer = pathCache_.find(source);
    if (outer == pathCache_.end()) continue;
    for (const Asked& target : targets) {
      const auto inner = outer->second.find(target);
      if (inner != outer->second.end()) return inner->second;
    }
  }
  return nullptr;
}

void PathCache::store(const std::vector<BaselineHop>& path, VersionBaseline&& source,
                      VersionBaseline&& target) {
  const auto start = std::make_shared<const VersionBaseline>(std::move(source));
  auto end = std::make_shared<const VersionBaseline>(std::move(target));
  auto stored = std::make_shared<const StoredPath>(start, path);
  const std::unique_lock lock(cacheLock_);
  pathCache_[start].try_emplace(std::move(end), std::move(stored));
  isEmpty_.store(false, std::memory_order_relaxed);
  traceStore(path);
}

void PathCache::clear() {
  if (isEmpty_.load(std::memory_order_relaxed)) return;
  ByBaseline<PathsByTarget> forgotten;
  const std::unique_lock lock(cacheLock_);
  pathCache_.swap(forgotten);
  isEmpty_.store(true, std::memory_order_relaxed);
}

}  // namespace tarn::evolution::pathfinder
