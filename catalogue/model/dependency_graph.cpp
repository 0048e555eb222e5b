// A segment tree that stands for its intervals: node n has the halves 2n and 2n + 1, and the leaves
// are the slots. An interval is the union of at most 2 log2(slots) nodes, which the walk from both
// of its ends upward finds; so all edges together are O((versions + dependencies) log versions),
// however many versions ranges span, and versions reach each other as in the plain graph. See
// docs/catalogue.md.

#include "catalogue/model/dependency_graph.hpp"

#include <algorithm>
#include <array>
#include <limits>

namespace tarn::evolution::catalogue {

using Node = DependencyGraph::Node;

DependencyGraph::DependencyGraph(Slot slotCount, std::vector<Dependency> dependencies)
    : slotCount_(slotCount) {
  const auto precedes = [](const Dependency& left, const Dependency& right) {
    return left.from < right.from;
  };
  if (!std::is_sorted(dependencies.begin(), dependencies.end(), precedes)) {
    std::stable_sort(dependencies.begin(), dependencies.end(), precedes);
  }
  targetStart_.reserve(slotCount_ + std::size_t{1});
  auto dependency = dependencies.begin();
  for (Slot slot = 0; slot < slotCount_; ++slot) {
    targetStart_.push_back(targets_.size());
    for (; dependency != dependencies.end() && dependency->from == slot; ++dependency) {
      addEdges(dependency->candidates);
    }
  }
  targetStart_.push_back(targets_.size());
}

void DependencyGraph::addEdges(SlotInterval interval) {
  if (interval.empty()) return;
  std::array<Node, std::numeric_limits<Node>::digits> fromRight{};  // downward
  std::size_t count = 0;
  Node left = nodeOf(interval.begin);
  Node right = nodeOf(interval.end);
  for (; left < right; left /= 2, right /= 2) {
    if (left % 2 == 1) targets_.push_back(left++);
    if (right % 2 == 1) fromRight[count++] = --right;
  }
  while (count > 0) targets_.push_back(fromRight[--count]);
}

std::size_t DependencyGraph::edgeCount(Node node) const {
  if (!isVersion(node)) return 2;
  return targetStart_[slotOf(node) + std::size_t{1}] - targetStart_[slotOf(node)];
}

Node DependencyGraph::edge(Node node, std::size_t number) const {
  if (!isVersion(node)) return 2 * node + static_cast<Node>(number);
  return targets_[targetStart_[slotOf(node)] + number];
}

}  // namespace tarn::evolution::catalogue
