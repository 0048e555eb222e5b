#pragma once

#include <cstdint>
#include <vector>

#include "catalogue/check/draft_index.hpp"

namespace tarn::evolution::catalogue {

/// The versions of a draft and their dependencies as a graph in which a dependency on a wide range
/// is a handful of edges: between versions and ranges stand the nodes of a segment tree over all
/// slots, each of which leads to its two halves.
///
/// Nodes are numbered from 1; those from `slotCount` on are the versions. Built in time and memory
/// nearly linear in versions and dependencies.
class DependencyRangeGraph {
 public:
  using Node = std::uint32_t;

  explicit DependencyRangeGraph(const DraftIndex& index);

  Node end() const { return 2 * slotCount_; }
  bool isVersion(Node node) const { return node >= slotCount_; }
  Slot slotOf(Node node) const { return node - slotCount_; }
  Node nodeOf(Slot slot) const { return slot + slotCount_; }

  std::size_t edgeCount(Node node) const;
  Node edge(Node node, std::size_t number) const;

 private:
  void addEdges(SlotInterval interval);

  Slot slotCount_;
  std::vector<Node> targets_;             // of the versions, one after the other
  std::vector<std::size_t> targetStart_;  // of each slot, and the end
};

/// The strongly connected components of a dependency graph.
class DependencyComponents {
 public:
  using Node = DependencyRangeGraph::Node;

  explicit DependencyComponents(const DependencyRangeGraph& graph);

  /// All nodes that versions lead to, and these: each after everything that it depends on, but for
  /// those in one component, which stand together.
  const std::vector<Node>& dependenciesFirst() const { return order_; }

  /// Whether a version depends on itself, directly or through others.
  bool isCyclic(Slot slot) const { return isCyclic_[slot]; }

  /// For each component with a cycle, its versions by ascending slot.
  const std::vector<std::vector<Slot>>& cyclic() const { return cyclic_; }

  /// A shortest cycle through a version that is on one, beginning with it: each depends on the
  /// next, and the last on the first.
  std::vector<Slot> cycleThrough(Slot slot) const;

 private:
  struct Visit {
    Node node;
    std::uint32_t entered;  // which one it was to be entered
    std::size_t edge;       // the next one to look at
  };

  void explore(Node start);
  void enter(Node node);
  void leave();
  void close(Node node);
  bool hasCycle(std::size_t first) const;

  const DependencyRangeGraph& graph_;
  std::vector<std::uint32_t> low_;        // of nodes entered: the smallest entry number reached
  std::vector<std::uint32_t> component_;  // of nodes closed
  std::uint32_t entered_ = 0;
  std::uint32_t closed_ = 0;  // components
  std::vector<Visit> trail_;
  std::vector<Node> open_;  // entered, their components not closed
  std::vector<Node> order_;
  std::vector<bool> isCyclic_;
  std::vector<std::vector<Slot>> cyclic_;
};

}  // namespace tarn::evolution::catalogue
