#pragma once

#include <cstdint>
#include <vector>

#include "catalogue/check/link_solver.hpp"
#include "catalogue/check/link_witness.hpp"
#include "catalogue/model/dependency_components.hpp"

namespace tarn::evolution::catalogue {

/// An edge from each version to each that a range of its dependencies admits.
DependencyGraph admissionsOf(const DraftIndex& index);

/// Leaves the dependencies out that lead back to the version that has them, which do not link.
void leaveOutWhatLeadsBack(DraftIndex& index, const DependencyComponents& components);

/// Which versions of a draft can be linked.
///
/// Linking a version links every candidate of its dependencies first and fails when one of them
/// cannot be linked. What depends on a part that could not be read counts as linkable: that part
/// has an error of its own. Dependencies that lead back must have been left out.
class LinkAnalysis {
 public:
  enum class State {
    Linkable,
    Unsatisfied,    ///< no version in the catalogue satisfies one of its dependencies
    Clashing,       ///< no choice of versions meets all that it needs
    SelfExcluding,  ///< it can be linked, but only with another version of itself: no baseline
                    ///< holds it
    Blocked,        ///< a candidate cannot be linked
    Undecided,
  };

  /// Why a version clashes with itself.
  struct Reason {
    std::optional<LinkClash> clash;
    std::vector<NameNumber> choices;
  };

  /// `budget` bounds the work that all versions take together, which leaves later ones undecided.
  LinkAnalysis(const DraftIndex& index, const DependencyComponents& components,
               const DependencyGraph& graph, std::uint64_t budget);

  State state(Slot slot) const { return states_[slot]; }

  /// What one version may take of the work: a solution of thousands of names many times over.
  static constexpr std::uint64_t budgetOfOne = 200'000;

  /// Of a blocked version: one that is not blocked itself, but cannot be linked.
  Slot blocker(Slot slot) const { return culprits_[graph_.nodeOf(slot)]; }

  /// Asks the solver again, for a version that is clashing or self-excluding.
  Reason explain(Slot slot);

  /// Whether versions can stand together, all of which are linkable; with why, if not.
  LinkSolver::Outcome combine(const std::vector<Slot>& slots, Reason& reason);

 private:
  void visit(DependencyGraph::Node node);
  State decide(Slot slot);
  State search(Slot slot, std::uint64_t& share);
  bool isUnsatisfied(Slot slot) const;
  Reason reason() const;

  const DraftIndex& index_;
  const DependencyComponents& components_;
  const DependencyGraph& graph_;
  LinkSolver solver_;
  LinkWitnesses witnesses_;
  std::uint64_t budget_;
  std::vector<State> states_;
  std::vector<Slot>
      culprits_;  // of each node: what keeps the versions that lead there from linking
};

}  // namespace tarn::evolution::catalogue
