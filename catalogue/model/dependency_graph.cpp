#include "catalogue/model/dependency_graph.hpp"

#include <numeric>
#include <optional>
#include <utility>

namespace tarn::evolution::catalogue {

/// Depth-first search that keeps its own stack: chains of dependencies may be long.
class CycleSearch {
 public:
  using Node = DependencyGraph::Node;
  using Slot = DependencyGraph::Slot;

  explicit CycleSearch(const DependencyGraph& graph)
      : graph_(graph), states_(graph.size(), State::Untouched), next_(graph.size() + 1) {
    std::iota(next_.begin(), next_.end(), Slot{0});
  }

  std::vector<Node> run() {
    for (Node start = 0; start < graph_.size(); ++start) {
      if (states_[start] != State::Untouched) continue;
      enter(start);
      while (!trail_.empty()) {
        const std::optional<Node> next = nextCandidate();
        if (!next) {
          leave();
        } else if (states_[*next] == State::OnTrail) {
          return trailFrom(*next);
        } else {
          enter(*next);
        }
      }
    }
    return {};
  }

 private:
  enum class State : char { Untouched, OnTrail, Cleared };

  struct Visit {
    Node node;
    std::size_t dependency;  // the one being looked at
    std::size_t end;
  };

  std::size_t firstDependency(std::size_t node) const {
    const auto& first = graph_.firstDependency_;
    return node < first.size() ? first[node] : graph_.dependencies_.size();
  }

  void enter(Node node) {
    states_[node] = State::OnTrail;
    trail_.push_back({node, firstDependency(node), firstDependency(std::size_t{node} + 1)});
  }

  void leave() {
    const Node node = trail_.back().node;
    trail_.pop_back();
    states_[node] = State::Cleared;
    const Slot slot = graph_.slotOf(node);
    next_[slot] = slot + 1;
  }

  /// The next candidate of the last visit's dependencies that is not cleared, if any.
  std::optional<Node> nextCandidate() {
    Visit& visit = trail_.back();
    for (; visit.dependency < visit.end; ++visit.dependency) {
      const auto& [first, last] = graph_.dependencies_[visit.dependency];
      const Slot slot = openFrom(first);
      if (slot < last) return graph_.nodeAt_[slot];
    }
    return std::nullopt;
  }

  /// The first slot from `slot` on whose node is not cleared, or the end.
  Slot openFrom(Slot slot) {
    while (next_[slot] != slot) {
      next_[slot] = next_[next_[slot]];
      slot = next_[slot];
    }
    return slot;
  }

  std::vector<Node> trailFrom(Node start) const {
    std::vector<Node> cycle;
    for (const Visit& visit : trail_) {
      if (visit.node == start || !cycle.empty()) cycle.push_back(visit.node);
    }
    return cycle;
  }

  const DependencyGraph& graph_;
  std::vector<State> states_;
  std::vector<Visit> trail_;
  std::vector<Slot> next_;  // a forest whose roots are the slots not cleared, and the end
};

DependencyGraph::DependencyGraph(std::vector<Node> nodeAt)
    : nodeAt_(std::move(nodeAt)), slotOf_(nodeAt_.size()) {
  for (Slot slot = 0; slot < nodeAt_.size(); ++slot) slotOf_[nodeAt_[slot]] = slot;
}

void DependencyGraph::addDependency(Node node, Candidates candidates) {
  while (firstDependency_.size() <= node) firstDependency_.push_back(dependencies_.size());
  dependencies_.push_back(candidates);
}

std::vector<DependencyGraph::Node> DependencyGraph::findCycle() const {
  return CycleSearch(*this).run();
}

}  // namespace tarn::evolution::catalogue
