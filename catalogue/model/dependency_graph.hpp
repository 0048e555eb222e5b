#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarn::evolution::catalogue {

/// Which versions of a catalogue may satisfy which dependencies, in as little memory as it takes: a
/// node for each version, in the catalogue's order.
///
/// Nodes also have slots, one each, in an order in which the candidates of every dependency are
/// neighbours: those of one name together, by ascending semantic version.
class DependencyGraph {
 public:
  using Node = std::uint32_t;
  using Slot = std::uint32_t;

  /// The slots from `first` up to but without `last`.
  struct Candidates {
    Slot first;
    Slot last;
  };

  /// `nodeAt` gives the node of each slot.
  explicit DependencyGraph(std::vector<Node> nodeAt);

  Slot slotOf(Node node) const { return slotOf_[node]; }

  /// Adds a dependency of a node. Nodes must come in ascending order.
  void addDependency(Node node, Candidates candidates);

  /// Nodes that each have the next one, and the last one the first, among the candidates of their
  /// dependencies; empty when there is no such cycle.
  ///
  /// Time is nearly linear in nodes and dependencies, however many versions these span.
  std::vector<Node> findCycle() const;

 private:
  friend class CycleSearch;

  std::size_t size() const { return nodeAt_.size(); }

  std::vector<Node> nodeAt_;
  std::vector<Slot> slotOf_;
  std::vector<std::size_t> firstDependency_;  // of each node up to the last that has some
  std::vector<Candidates> dependencies_;
};

}  // namespace tarn::evolution::catalogue
