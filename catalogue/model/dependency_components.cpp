// Tarjan's algorithm: depth-first search numbers the nodes as it enters them and keeps those whose
// components are not closed on a second stack. A node from which none entered earlier can be
// reached is the first of its component, which then is what lies above it on that stack. Components
// are closed after all that they lead to. Linear in nodes and edges; with a stack of its own, for
// chains of dependencies may be long.
//
// A shortest cycle is found by breadth-first search over the versions of one component. See
// docs/catalogue.md.

#include "catalogue/model/dependency_components.hpp"

#include <algorithm>
#include <unordered_map>

namespace tarn::evolution::catalogue {

using Node = DependencyGraph::Node;

DependencyComponents::DependencyComponents(const DependencyGraph& graph)
    : graph_(graph), low_(graph.end(), nothing), component_(graph.end(), nothing) {
  isCyclic_.resize(graph.slotCount());
  for (Slot slot = 0; slot < graph.slotCount(); ++slot) {
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
  std::unordered_map<Node, Slot> cameFrom;  // of nodes met: the version that leads there
  std::vector<Slot> queue{slot};
  std::vector<Node> waiting;
  const auto pushTargets = [&](Node node) {
    for (std::size_t i = graph_.edgeCount(node); i-- > 0;) waiting.push_back(graph_.edge(node, i));
  };
  for (std::size_t next = 0; !cameFrom.contains(start); ++next) {
    pushTargets(graph_.nodeOf(queue[next]));
    while (!waiting.empty()) {
      const Node node = waiting.back();
      waiting.pop_back();
      const bool isInside = component_[node] == component_[start];
      if (!isInside || !cameFrom.try_emplace(node, queue[next]).second) continue;
      if (graph_.isVersion(node)) {
        queue.push_back(graph_.slotOf(node));
      } else {
        pushTargets(node);
      }
    }
  }
  std::vector<Slot> cycle;
  for (Slot at = cameFrom.at(start); at != slot; at = cameFrom.at(graph_.nodeOf(at))) {
    cycle.push_back(at);
  }
  cycle.push_back(slot);
  std::reverse(cycle.begin(), cycle.end());
  return cycle;
}

}  // namespace tarn::evolution::catalogue
