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

PathCache::Step::Step(const BaselineHop& step) : hops(step.hops.begin(), step.hops.end()) {
  const auto& before = step.from.metamodels;
  const auto& after = step.to.metamodels;
  changes.reserve(hops.size());
  auto next = before.begin();  // most often the maps have the same order
  for (const auto& [name, metamodel] : after) {
    const bool isNext = next != before.end() && next->first == name;
    const auto held = isNext ? next++ : before.find(name);
    if (after.size() != before.size() || held == before.end()) {
      changes.clear();
      to = step.to;
      return;
    }
    if (held->second != metamodel) changes.emplace_back(name, metamodel);
  }
}

BaselineHop PathCache::Step::applyTo(const VersionBaseline& from) const {
  VersionBaseline after = to ? *to : from;
  for (const auto& [name, metamodel] : changes) after.metamodels.at(name) = metamodel;
  return {from, std::move(after), LockstepHop(hops.begin(), hops.end(), hops.size())};
}

std::vector<BaselineHop> PathCache::makePath(const VersionBaseline& source, const Steps& steps) {
  std::vector<BaselineHop> path;
  path.reserve(steps.size());
  for (const Step& step : steps) {
    path.push_back(step.applyTo(path.empty() ? source : path.back().to));
  }
  return path;
}

std::optional<std::vector<BaselineHop>> PathCache::find(
    const std::vector<VersionBaseline>& sources, const std::vector<VersionBaseline>& targets) {
  const std::shared_lock lock(cacheLock_);
  if (pathCache_.empty()) return std::nullopt;  // nothing to hash for
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

void PathCache::store(const std::vector<BaselineHop>& path, VersionBaseline&& source,
                      VersionBaseline&& target) {
  const std::unique_lock lock(cacheLock_);
  auto& stored = pathCache_[std::move(source)];
  if (!stored.contains(target)) {
    stored.emplace(std::move(target), Steps(path.begin(), path.end()));
  }
  traceStore(path);
}

void PathCache::clear() {
  const std::unique_lock lock(cacheLock_);
  pathCache_.clear();
}

}  // namespace tarn::evolution::pathfinder
