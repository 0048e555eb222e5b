#include "pathfinder/path_cache.hpp"

#include <mutex>
#include <ostream>
#include <shared_mutex>

#include "messages/trace.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::trace;
using diagnostics::TraceLevel;
using diagnostics::traceValue;

namespace {

void traceHit(const std::vector<BaselineHop>& path) {
  traceValue("Found Path in cache");
  for (const BaselineHop& step : path) traceValue(step.to);
}

template <class Steps>
std::vector<BaselineHop> makePath(const VersionBaseline& source, const Steps& steps) {
  std::vector<BaselineHop> path;
  path.reserve(steps.size());
  const VersionBaseline* from = &source;
  for (const auto& [hops, to] : steps) {
    path.emplace_back(*from, to, hops);
    from = &to;
  }
  return path;
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

std::optional<std::vector<BaselineHop>> PathCache::find(
    const std::vector<VersionBaseline>& sources, const std::vector<VersionBaseline>& targets) {
  const std::shared_lock lock(cacheLock_);
  auto path = lookUp(sources, targets);
  if (path) traceHit(*path);
  return path;
}

std::optional<std::vector<BaselineHop>> PathCache::lookUp(
    const std::vector<VersionBaseline>& sources,
    const std::vector<VersionBaseline>& targets) const {
  for (const VersionBaseline& source : sources) {
    const auto outer = pathCache_.find(source);
    if (outer == pathCache_.end()) continue;
    for (const VersionBaseline& target : targets) {
      const auto inner = outer->second.find(target);
      if (inner != outer->second.end()) return makePath(source, inner->second);
    }
  }
  return std::nullopt;
}

void PathCache::store(const std::vector<BaselineHop>& path, const VersionBaseline& target) {
  const std::unique_lock lock(cacheLock_);
  Steps steps;
  steps.reserve(path.size());
  for (const BaselineHop& step : path) steps.push_back({step.hops, step.to});
  pathCache_[path.front().from].try_emplace(target, std::move(steps));
  traceStore(path);
}

void PathCache::clear() {
  const std::unique_lock lock(cacheLock_);
  pathCache_.clear();
}

}  // namespace tarn::evolution::pathfinder
