#include "catalogue/check/dependency_components.hpp"

#include <algorithm>
#include <unordered_map>

namespace tarn::evolution::catalogue {

using Node = DependencyRangeGraph::Node;

DependencyRangeGraph::DependencyRangeGraph(const DraftIndex& index)
    : slotCount_(index.slotCount()) {
  targetStart_.reserve(slotCount_ + std::size_t{1});
  for (Slot slot = 0; slot < slotCount_; ++slot) {
    targetStart_.push_back(targets_.size());
    for (const auto* dependency = index.dependenciesBegin(slot);
         dependency != index.dependenciesEnd(slot); ++dependency) {
      if (dependency->pieces.empty()) addEdges(dependency->candidates);
      for (const SlotInterval piece : dependency->pieces) addEdges(piece);
    }
  }
  targetStart_.push_back(targets_.size());
}

/// The nodes whose leaves are the interval, as few as can be.
void DependencyRangeGraph::addEdges(SlotInterval interval) {
  if (interval.empty()) return;
  Node left = nodeOf(interval.begin);
  Node right = nodeOf(interval.end);
  for (; left < right; left /= 2, right /= 2) {
    if (left % 2 == 1) targets_.push_back(left++);
    if (right % 2 == 1) targets_.push_back(--right);
  }
}

std::size_t DependencyRangeGraph::edgeCount(Node node) const {
  if (!isVersion(node)) return 2;
  return targetStart_[slotOf(node) + std::size_t{1}] - targetStart_[slotOf(node)];
}

Node DependencyRangeGraph::edge(Node node, std::size_t number) const {
  if (!isVersion(node)) return 2 * node + static_cast<Node>(number);
  return targets_[targetStart_[slotOf(node)] + number];
}

// Tarjan's algorithm with a stack of its own: chains of dependencies may be long.

DependencyComponents::DependencyComponents(const DependencyRangeGraph& graph)
    : graph_(graph), low_(graph.end(), nothing), component_(graph.end(), nothing) {
  const Slot slots = graph.end() / 2;
  isCyclic_.resize(slots);
  for (Slot slot = 0; slot < slots; ++slot) {
    if (low_[graph.nodeOf(slot)] == nothing) explore(graph.nodeOf(slot));
  }
}

void DependencyComponents::enter(Node node) {
  low_[node] = entered_;
  open_.push_back(node);
  trail_.push_back({node, entered_++, 0});
}

void DependencyComponents::explore(Node start) {
  enter(start);
  while (!trail_.empty()) {
    Visit& visit = trail_.back();
    if (visit.edge < graph_.edgeCount(visit.node)) {
      const Node next = graph_.edge(visit.node, visit.edge++);
      if (low_[next] == nothing) {
        enter(next);
      } else if (component_[next] == nothing) {
        low_[visit.node] = std::min(low_[visit.node], low_[next]);
      }
    } else {
      leave();
    }
  }
}

void DependencyComponents::leave() {
  const Visit visit = trail_.back();
  trail_.pop_back();
  if (low_[visit.node] == visit.entered) {
    close(visit.node);
  } else {
    std::uint32_t& before = low_[trail_.back().node];
    before = std::min(before, low_[visit.node]);
  }
}

/// Closes the component of which `node` was entered first.
void DependencyComponents::close(Node node) {
  const std::size_t first = order_.size();
  Node member = 0;
  do {
    member = open_.back();
    open_.pop_back();
    component_[member] = closed_;
    order_.push_back(member);
  } while (member != node);
  ++closed_;
  if (!hasCycle(first)) return;
  auto& slots = cyclic_.emplace_back();
  for (std::size_t i = first; i < order_.size(); ++i) {
    if (!graph_.isVersion(order_[i])) continue;
    slots.push_back(graph_.slotOf(order_[i]));
    isCyclic_[slots.back()] = true;
  }
  std::sort(slots.begin(), slots.end());
}

/// Whether the component whose nodes stand in the order from `first` on has a cycle.
bool DependencyComponents::hasCycle(std::size_t first) const {
  if (order_.size() - first > 1) return true;
  const Node only = order_[first];
  if (!graph_.isVersion(only)) return false;
  for (std::size_t i = 0; i < graph_.edgeCount(only); ++i) {
    if (graph_.edge(only, i) == only) return true;
  }
  return false;
}

std::vector<Slot> DependencyComponents::cycleThrough(Slot slot) const {
  const Node start = graph_.nodeOf(slot);
  std::unordered_map<Node, Node> cameFrom;
  std::vector<Node> queue{start};
  for (std::size_t next = 0; next < queue.size() && !cameFrom.contains(start); ++next) {
    const Node node = queue[next];
    for (std::size_t i = 0; i < graph_.edgeCount(node); ++i) {
      const Node target = graph_.edge(node, i);
      if (component_[target] != component_[start]) continue;
      if (cameFrom.try_emplace(target, node).second) queue.push_back(target);
    }
  }
  std::vector<Slot> cycle;
  for (Node node = cameFrom.at(start); node != start; node = cameFrom.at(node)) {
    if (graph_.isVersion(node)) cycle.push_back(graph_.slotOf(node));
  }
  cycle.push_back(slot);
  std::reverse(cycle.begin(), cycle.end());
  return cycle;
}

}  // namespace tarn::evolution::catalogue
