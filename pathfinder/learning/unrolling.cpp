// Topological sorting (Kahn's algorithm). Where only cycles are left, the version that is nearest
// to the starts is put next, whatever leads to it.
//
// The least weight is Dijkstra's over pairs of a version and how often the way has gone back.

#include "pathfinder/learning/unrolling.hpp"

#include <algorithm>
#include <functional>
#include <queue>
#include <tuple>
#include <utility>

namespace tarn::evolution::pathfinder {

std::vector<bool> reachedFrom(std::vector<std::size_t> open,
                              const std::vector<std::vector<std::size_t>>& edges) {
  std::vector<bool> isReached(edges.size());
  for (const std::size_t place : open) isReached[place] = true;
  while (!open.empty()) {
    const std::size_t place = open.back();
    open.pop_back();
    for (const std::size_t next : edges[place]) {
      if (!isReached[next]) open.push_back(next);
      isReached[next] = true;
    }
  }
  return isReached;
}

Unrolling::Unrolling(const VersionGraph& graph) : graph_(graph), places_(graph.onward.size(), off) {
  lineUp();
}

/// Those on a way from a start to an end.
std::vector<bool> Unrolling::liveVersions() const {
  const std::size_t count = graph_.onward.size();
  std::vector<std::vector<std::size_t>> ahead(count);
  std::vector<std::vector<std::size_t>> back(count);
  std::vector<std::size_t> starts;
  std::vector<std::size_t> ends;
  for (std::size_t version = 0; version < count; ++version) {
    if (graph_.isStart[version]) starts.push_back(version);
    if (graph_.isEnd[version]) ends.push_back(version);
    for (const VersionGraph::Onward& next : graph_.onward[version]) {
      ahead[version].push_back(next.target);
      back[next.target].push_back(version);
    }
  }
  std::vector<bool> isLive = reachedFrom(std::move(starts), ahead);
  const std::vector<bool> leadsOn = reachedFrom(std::move(ends), back);
  for (std::size_t version = 0; version < count; ++version) {
    isLive[version] = isLive[version] && leadsOn[version];
  }
  return isLive;
}

void Unrolling::lineUp() {
  const std::vector<bool> isLive = liveVersions();
  std::vector<std::uint32_t> before(isLive.size());
  std::vector<std::size_t> byDistance;
  for (std::size_t version = 0; version < isLive.size(); ++version) {
    if (!isLive[version]) continue;
    byDistance.push_back(version);
    for (const VersionGraph::Onward& next : graph_.onward[version]) ++before[next.target];
  }
  const auto put = [&](std::size_t version) {
    places_[version] = line_.size();
    line_.push_back(version);
  };
  for (const std::size_t version : byDistance) {
    if (before[version] == 0) put(version);
  }
  std::stable_sort(byDistance.begin(), byDistance.end(),
                   [this](std::size_t one, std::size_t other) {
                     return graph_.distance[one] < graph_.distance[other];
                   });
  auto nearest = byDistance.begin();
  for (std::size_t i = 0; i < byDistance.size(); ++i) {
    if (i == line_.size()) {
      isCyclic_ = true;
      while (isOnLine(*nearest)) ++nearest;
      put(*nearest);
    }
    for (const VersionGraph::Onward& next : graph_.onward[line_[i]]) {
      if (!isLive[next.target]) continue;
      if (--before[next.target] == 0 && !isOnLine(next.target)) put(next.target);
    }
  }
}

std::uint64_t Unrolling::leastWeight(std::uint32_t laps) const {
  using Waiting = std::tuple<std::uint64_t, std::size_t, std::uint32_t>;  // weight, version, laps
  std::vector<std::vector<std::uint64_t>> least(
      graph_.onward.size(), std::vector<std::uint64_t>(std::size_t{laps} + 1, noWay));
  std::priority_queue<Waiting, std::vector<Waiting>, std::greater<>> waiting;
  const auto reach = [&](std::size_t version, std::uint32_t lap, std::uint64_t weight) {
    if (weight >= least[version][lap]) return;
    least[version][lap] = weight;
    waiting.emplace(weight, version, lap);
  };
  for (const std::size_t version : line_) {
    if (graph_.isStart[version]) reach(version, 0, 0);
  }
  while (!waiting.empty()) {
    const auto [weight, version, lap] = waiting.top();
    waiting.pop();
    if (weight > least[version][lap]) continue;
    if (lap == laps && graph_.isEnd[version]) return weight;
    for (const VersionGraph::Onward& next : graph_.onward[version]) {
      if (!isOnLine(next.target)) continue;
      const std::uint32_t back = goesBack(version, next.target) ? 1 : 0;
      reach(next.target, std::min(laps, lap + back), weight + next.weight);
    }
  }
  return noWay;
}

}  // namespace tarn::evolution::pathfinder
