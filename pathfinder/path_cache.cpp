#include "pathfinder/path_cache.hpp"

#include <algorithm>
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

PathCache::Step::Step(const VersionBaseline& from, const BaselineHop& step) : hops(step.hops) {
  const auto& before = from.metamodels;
  const auto& after = step.to.metamodels;
  const bool haveSameNames =
      std::equal(before.begin(), before.end(), after.begin(), after.end(),
                 [](const auto& left, const auto& right) { return left.first == right.first; });
  if (!haveSameNames) {
    to = step.to;
    return;
  }
  changes.reserve(hops.size());
  auto held = before.begin();
  for (const auto& [name, metamodel] : after) {
    if ((held++)->second != metamodel) changes.emplace_back(name, metamodel);
  }
}

VersionBaseline PathCache::Step::applyTo(const VersionBaseline& from) const {
  if (to) return *to;
  VersionBaseline result = from;
  for (const auto& [name, metamodel] : changes) result.metamodels.at(name) = metamodel;
  return result;
}

std::vector<BaselineHop> PathCache::makePath(const VersionBaseline& source, const Steps& steps) {
  std::vector<BaselineHop> path;
  path.reserve(steps.size());
  for (const Step& step : steps) {
    const VersionBaseline& from = path.empty() ? source : path.back().to;
    path.emplace_back(from, step.applyTo(from), LockstepHop(step.hops));
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
      if (inner != outer->second.end()) return makePath(outer->first, inner->second);
    }
  }
  return std::nullopt;
}

void PathCache::store(const std::vector<BaselineHop>& path, const VersionBaseline& target) {
  const std::unique_lock lock(cacheLock_);
  const auto source = pathCache_.try_emplace(path.front().from).first;
  if (!source->second.contains(target)) {
    Steps steps;
    steps.reserve(path.size());
    const VersionBaseline* from = &source->first;
    for (const BaselineHop& step : path) {
      steps.emplace_back(*from, step);
      from = &step.to;
    }
    source->second.emplace(target, std::move(steps));
  }
  traceStore(path);
}

void PathCache::clear() {
  const std::unique_lock lock(cacheLock_);
  pathCache_.clear();
}

}  // namespace tarn::evolution::pathfinder
