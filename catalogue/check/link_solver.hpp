#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "catalogue/check/draft_index.hpp"

namespace tarn::evolution::catalogue {

/// What must hold of one name: that its version is one of some.
struct LinkRequirement {
  NameNumber name = nothing;
  SlotInterval candidates;
  Slot holder = nothing;  ///< the version whose dependency it is; `nothing` for what is asked for
  std::uint32_t row = nothing;  ///< of the dependency

  /// Of a union, what it consists of; `candidates` spans that. Refers to the dependency.
  const ResolvedDependency* parts = nullptr;

  bool admits(Slot slot) const {
    return candidates.contains(slot) && (parts == nullptr || parts->admits(slot));
  }
};

/// Two requirements that exclude one another, with the versions that lead from what is asked for to
/// their holders, which come last.
struct LinkClash {
  LinkRequirement first;
  LinkRequirement second;
  std::vector<Slot> firstChain;
  std::vector<Slot> secondChain;
};

/// Decides whether versions can stand together: whether there is a choice of one version for each
/// name that they need, directly or through others, that meets every requirement. Linking finds a
/// consistent choice exactly when there is one.
///
/// Depth-first with backjumping over the names that leave a choice; what leaves none is taken at
/// once, so that pinned dependencies cost one look each.
class LinkSolver {
 public:
  enum class Outcome { Consistent, Clashing, Undecided };

  explicit LinkSolver(const DraftIndex& index);

  /// Whether no choice may hold this version, which is not so at first.
  void setExcluded(Slot slot, bool isExcluded) { isExcluded_[slot] = isExcluded; }

  /// Whether all of these versions can stand together. Undecided when that takes more than `budget`
  /// requirements looked at; what it took is subtracted from `budget`.
  Outcome solve(const std::vector<Slot>& asked, std::uint64_t& budget);

  /// Whether the dependencies of a version can be met, were it not for its own name.
  Outcome solveDependencies(Slot slot, std::uint64_t& budget);

  /// When consistent: the versions that were found to stand together.
  std::vector<Slot> found();

  /// After a clash: the first one met of which every choice of versions has one, if it is between
  /// two requirements.
  const std::optional<LinkClash>& clash() const { return clash_; }

  /// After a clash: the names that leave a choice, but not one that helps. None: the clash is all.
  const std::vector<NameNumber>& choices() const { return choices_; }

 private:
  using Levels = std::vector<std::uint32_t>;  // ascending numbers of decisions

  struct Domain {
    std::uint64_t generation = 0;  // the run that it belongs to
    SlotInterval left;
    LinkRequirement lower;  // what sets the bounds of `left`
    LinkRequirement upper;
    std::vector<LinkRequirement> unions;    // whose gaps may lie within `left`
    std::vector<LinkRequirement> optional;  // to be met once the name is required
    Slot cause = nothing;                   // the holder of the first requirement
    Slot taken = nothing;
    std::uint32_t level = nothing;  // of the decision that took it; none if nothing else was left
  };

  struct Change {
    NameNumber name;
    Domain before;
  };

  struct Decision {
    NameNumber name;
    Slot next;             // those from here on have been tried
    std::size_t changes;   // made before it
    std::size_t required;  // names required before it
    std::size_t nextRequired;
    Levels conflict;  // the earlier decisions that made its values fail
  };

  void start(std::uint64_t budget);
  Outcome run();
  bool meet(const LinkRequirement& requirement);
  bool meetIfRequired(const LinkRequirement& requirement);
  void narrow(const LinkRequirement& requirement);
  bool takeForced();
  bool take(NameNumber name, Slot slot, std::uint32_t level);
  bool requireAll(Slot holder);
  std::optional<NameNumber> nextOpen();
  bool decide(NameNumber name);
  bool tryNext();
  bool backjump();
  void undo(const Decision& decision);

  Domain& domain(NameNumber name);
  Domain& changedDomain(NameNumber name);
  void noteClash(const LinkRequirement& first, const LinkRequirement& second);
  std::vector<Slot> chainTo(Slot holder);
  void blame(Slot holder);
  void blameAll(const Domain& domain);
  void blameCause(const Domain& domain);
  bool isAdmitted(NameNumber name, Slot slot);

  const DraftIndex& index_;
  std::vector<bool> isExcluded_;
  std::vector<Domain> domains_;
  std::uint64_t generation_ = 0;
  std::uint64_t work_ = 0;
  std::uint64_t limit_ = 0;
  Slot root_ = nothing;  // whose dependencies are being solved without it
  std::vector<Change> changes_;
  std::vector<NameNumber> required_;  // in the order in which they were met first
  std::size_t nextRequired_ = 0;
  std::vector<NameNumber> forced_;  // one version left, not taken yet
  std::vector<Decision> decisions_;
  Levels conflict_;  // the decisions to blame for the dead end
  std::optional<LinkClash> clash_;
  std::vector<NameNumber> choices_;
};

}  // namespace tarn::evolution::catalogue
