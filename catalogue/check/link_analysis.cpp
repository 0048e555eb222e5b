// Decides versions in the order of their components, dependencies first, so that all candidates of
// a version are decided before it: blocked by one of them, unsatisfied, shown to be linkable by a
// set that is known, or else for the solver. What blocks is handed on through the nodes of the
// graph, each once. Linear but for the solver. See docs/catalogue.md.

#include "catalogue/check/link_analysis.hpp"

#include <algorithm>

namespace tarn::evolution::catalogue {

DependencyGraph admissionsOf(const DraftIndex& index) {
  std::vector<DependencyGraph::Dependency> dependencies;
  for (Slot slot = 0; slot < index.slots().size(); ++slot) {
    for (const ResolvedDependency& dependency : index.dependenciesOf(slot)) {
      dependency.forCandidates([&](SlotInterval each) { dependencies.push_back({slot, each}); });
    }
  }
  return {index.slots().size(), std::move(dependencies)};
}

void leaveOutWhatLeadsBack(DraftIndex& index, const DependencyComponents& components) {
  if (components.cyclic().empty()) return;
  index.leaveOutLeadingBack(
      [&](Slot from, Slot candidate) { return components.areTogether(from, candidate); });
}

LinkAnalysis::LinkAnalysis(const DraftIndex& index, const DependencyComponents& components,
                           const DependencyGraph& graph, std::uint64_t budget)
    : index_(index),
      components_(components),
      graph_(graph),
      solver_(index),
      witnesses_(index),
      budget_(budget),
      states_(index.slots().size(), State::Linkable),
      culprits_(graph.end(), nothing) {
  for (const auto node : components.dependenciesFirst()) visit(node);
}

void LinkAnalysis::visit(DependencyGraph::Node node) {
  for (std::size_t i = 0; i < graph_.edgeCount(node) && culprits_[node] == nothing; ++i) {
    culprits_[node] = culprits_[graph_.edge(node, i)];
  }
  if (!graph_.isVersion(node)) return;
  const Slot slot = graph_.slotOf(node);
  states_[slot] = decide(slot);
  if (states_[slot] == State::Unsatisfied || states_[slot] == State::Clashing) {
    culprits_[node] = slot;
  } else if (states_[slot] == State::SelfExcluding) {
    solver_.setExcluded(slot, true);
  }
}

LinkAnalysis::State LinkAnalysis::decide(Slot slot) {
  if (components_.isCyclic(slot)) return State::Linkable;
  if (culprits_[graph_.nodeOf(slot)] != nothing) return State::Blocked;
  if (isUnsatisfied(slot)) return State::Unsatisfied;
  if (index_.dependenciesOf(slot).empty()) return State::Linkable;
  if (witnesses_.cover(slot)) return State::Linkable;
  std::uint64_t share = std::min(budget_, budgetOfOne);
  budget_ -= share;
  const State result = search(slot, share);
  budget_ += share;
  return result;
}

LinkAnalysis::State LinkAnalysis::search(Slot slot, std::uint64_t& share) {
  LinkSolver::Outcome outcome = solver_.solve({slot}, share);
  if (outcome == LinkSolver::Outcome::Consistent) {
    witnesses_.add(solver_.found());
    return State::Linkable;
  }
  if (outcome == LinkSolver::Outcome::Clashing) {
    outcome = solver_.solveDependencies(slot, share);
    if (outcome == LinkSolver::Outcome::Consistent) return State::SelfExcluding;
  }
  return outcome == LinkSolver::Outcome::Clashing ? State::Clashing : State::Undecided;
}

bool LinkAnalysis::isUnsatisfied(Slot slot) const {
  const auto dependencies = index_.dependenciesOf(slot);
  return std::any_of(dependencies.begin(), dependencies.end(), [&](const auto& dependency) {
    return dependency.isFirstOfName && dependency.candidates.empty() &&
           index_.names()[dependency.name].isComplete;
  });
}

LinkAnalysis::Reason LinkAnalysis::reason() const {
  return {solver_.clash(), solver_.choices()};
}

LinkAnalysis::Reason LinkAnalysis::explain(Slot slot) {
  std::uint64_t budget = budgetOfOne;
  solver_.setExcluded(slot, false);
  solver_.solve({slot}, budget);
  solver_.setExcluded(slot, states_[slot] == State::SelfExcluding);
  return reason();
}

LinkSolver::Outcome LinkAnalysis::combine(const std::vector<Slot>& slots, Reason& reason) {
  std::uint64_t budget = budgetOfOne;
  const LinkSolver::Outcome outcome = solver_.solve(slots, budget);
  reason = this->reason();
  return outcome;
}

}  // namespace tarn::evolution::catalogue
