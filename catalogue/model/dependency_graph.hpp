#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "catalogue/model/version_slots.hpp"

namespace tarn::evolution::catalogue {

/// The versions of a catalogue and their dependencies as a graph in which a dependency on a wide
/// range is a handful of edges: between versions and ranges stand the nodes of a segment tree over
/// all slots, each of which leads to its two halves.
///
/// Nodes are numbered from 1; those from `slotCount` on are the versions. Built in time and memory
/// nearly linear in versions and dependencies.
class DependencyGraph {
 public:
  using Node = std::uint32_t;

  /// A version and candidates of one of its dependencies: all of them, or an interval of those of
  /// a union of ranges.
  struct Dependency {
    Slot from;
    SlotInterval candidates;
  };

  /// Dependencies in any order; those of one version keep theirs.
  DependencyGraph(Slot slotCount, std::vector<Dependency> dependencies);

  Slot slotCount() const { return slotCount_; }
  Node end() const { return 2 * slotCount_; }
  bool isVersion(Node node) const { return node >= slotCount_; }
  Slot slotOf(Node node) const { return node - slotCount_; }
  Node nodeOf(Slot slot) const { return slot + slotCount_; }

  /// The edges of a version lead to its dependencies in their order, and to the nodes of each range
  /// by ascending slots.
  std::size_t edgeCount(Node node) const;
  Node edge(Node node, std::size_t number) const;

 private:
  void addEdges(SlotInterval interval);

  Slot slotCount_;
  std::vector<Node> targets_;             // of the versions, one after the other
  std::vector<std::size_t> targetStart_;  // of each slot, and the end
};

}  // namespace tarn::evolution::catalogue
