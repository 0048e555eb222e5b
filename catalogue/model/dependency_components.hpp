#pragma once

#include <cstdint>
#include <vector>

#include "catalogue/model/dependency_graph.hpp"

namespace tarn::evolution::catalogue {

/// The strongly connected components of a dependency graph, which it refers to.
class DependencyComponents {
 public:
  using Node = DependencyGraph::Node;

  explicit DependencyComponents(const DependencyGraph& graph);

  /// All nodes that versions lead to, and these: each after everything that it depends on, but for
  /// those in one component, which stand together.
  const std::vector<Node>& dependenciesFirst() const { return order_; }

  /// Whether a version depends on itself, directly or through others.
  bool isCyclic(Slot slot) const { return isCyclic_[slot]; }

  /// Whether two versions are in one component: each depends on the other, or they are the same
  /// and depend on themselves.
  bool areTogether(Slot left, Slot right) const {
    return isCyclic_[left] && component_[graph_.nodeOf(left)] == component_[graph_.nodeOf(right)];
  }

  /// For each component with a cycle, its versions by ascending slot.
  const std::vector<std::vector<Slot>>& cyclic() const { return cyclic_; }

  /// A shortest cycle through a version that is on one, beginning with it: each depends on the
  /// next, and the last on the first. Of several the one that the first dependencies and the lowest
  /// slots of a name lead to: in whichever order names stand.
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

  const DependencyGraph& graph_;
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
