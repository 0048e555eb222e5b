#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pathfinder/planning/bit_row.hpp"
#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/plan_cost.hpp"
#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/version_bounds.hpp"

namespace tarn::evolution::pathfinder {

/// What all steps of one search are formed from.
struct PlanningGround {
  const SearchSpace& space;
  const Compatibility& compatibility;
  const AllVersionBounds& bounds;
};

/// One of the things that a name can do in a step back.
struct StepOption {
  VersionIndex before = 0;          ///< the version that it had before the step
  std::uint64_t hop = 0;            ///< the hop's weight; 0 for no hop
  bool withoutOrdinaryHop = false;  ///< only for a step that has none
};

/// A partial assignment of a step problem.
struct PartialStep {
  /// The best options of all names together, for some number of steps before.
  struct Sum {
    std::uint64_t least = 0;  ///< hops and distances
    std::uint64_t hops = 0;
    std::uint32_t unmet = 0;  ///< names that have no option for that number of steps
  };

  std::uint32_t next = 0;  ///< the variables before this one are decided

  /// How many steps with an ordinary hop are before this one: the fewest that every name needs.
  std::uint32_t steps = 0;

  /// Whether the sums are out of date. The bound of such a step is good enough to put it in its
  /// place among others; most of them are never looked at again.
  bool isStale = false;

  // Kept up to date so that a bound need not look at every name again.
  std::uint64_t leastEver = 0;  ///< of the options, for any number of steps before
  Sum sum;                      ///< for `steps` before, with an ordinary hop in a step

  /// `StepProblem::words` words that its owner provides: the domains, a bit for each option, and
  /// then the weights, last hop first, of the cheapest ways to the best options, added up.
  std::uint64_t* words = nullptr;
};

/// The ways to go one step back from a selection, as a constraint problem: a variable for each
/// name, its domain the options that the name has, the constraints that the versions before the
/// step can stand together. There are exponentially many solutions, so they are formed name by
/// name, and a partial assignment already tells what the others can do at best.
///
/// A name's options are to stay where it is, to come over one of the hops that lead to its version
/// or, if a link can bring the version in, to have been absent. The problem of a last selection,
/// after which there is no step, has the versions that a target admits for options.
///
/// A step has an ordinary hop or, if there is an expensive one, may do without.
class StepProblem {
 public:
  enum class Kind {
    LastSelection,
    Step,                 ///< with an ordinary hop, or without
    StepWithOrdinaryHop,  ///< there are no others to choose from
  };

  /// What bounds are worked out with; for any problem, kept for its memory.
  struct Scratch {
    std::vector<std::uint64_t> sums;
    std::vector<std::uint64_t> ahead;
    std::vector<std::uint64_t> tried;
    std::uint64_t looks = 0;  // at a name, so far
  };

  explicit StepProblem(const PlanningGround& ground) : ground_(&ground) {}

  /// Begins anew, without names.
  void reset(Kind kind);

  /// Gives the name that is being added an option, unless it leads to where no path goes.
  void addOption(const StepOption& option);

  /// Ends the name that is being added; names are added in ascending order.
  void endName();

  std::size_t words() const { return domainWords_ + aheadLength_; }

  /// How many weights a bound looks ahead at most.
  std::size_t mostAhead() const { return aheadLength_ + 1; }

  /// The partial step in which nothing is decided; false when some name has no option.
  bool begin(PartialStep& partial) const;

  bool isComplete(const PartialStep& partial) const { return partial.next == open_.size(); }

  /// Calls `visit` with each option that is left to the next name, to be given to `choose`.
  template <class Visit>
  void visitOptions(const PartialStep& partial, const Visit& visit) const {
    const Domain& domain = domains_[open_[partial.next]];
    for (std::size_t option = domain.first; option < domain.end; ++option) {
      if (isOpen(partial, option)) visit(option);
    }
  }

  /// Gives the next name that option, and all others what then remains to them; false when that is
  /// nothing for one of them.
  bool choose(PartialStep& partial, std::size_t option) const;

  /// Finds the least total of the step and all before it, and the heaviest weights among those of
  /// that total; false when a name has no option that leads back to a source. The bound refers to
  /// `scratch`.
  bool findBound(const PartialStep& partial, const WeightChains& chains, Scratch& scratch,
                 CostBound& bound) const;

  /// Brings a stale step's sums up to date, so that its bound is as good as can be.
  void refresh(PartialStep& partial) const;

  /// The option of each name of a complete step; false when these make no step.
  bool takeOptions(const PartialStep& partial, std::vector<StepOption>& options) const;

 private:
  struct Candidate {
    StepOption option;
    std::uint64_t least;  // the hop and the distance before it
    const VersionBounds* bounds;
  };

  /// A name's candidates, the best first: least weight, then heaviest hop, then heaviest way.
  struct Domain {
    std::size_t first;
    std::size_t end;
  };

  bool isStep() const { return kind_ != Kind::LastSelection; }
  bool isOpen(const PartialStep& partial, std::size_t option) const {
    return ConstBitRow(partial.words, domainWords_).contains(option);
  }
  void close(PartialStep& partial, std::size_t option) const {
    BitRow(partial.words, domainWords_).erase(option);
  }
  std::uint64_t* aheadIn(PartialStep& partial) const { return partial.words + domainWords_; }

  bool isDecided(NameIndex name) const;
  template <class Operation>
  void tally(const Operation& operation, const Candidate& candidate, PartialStep::Sum& sum,
             std::uint64_t* ahead) const;
  void addDecided(const Candidate& candidate);

  bool propagate(PartialStep& partial) const;
  bool decide(PartialStep& partial, std::size_t option) const;
  template <class IsKept>
  bool narrow(PartialStep& partial, const Domain& domain, const IsKept& isKept,
              std::uint32_t& steps) const;

  std::uint32_t fewestSteps(const PartialStep& partial, const Domain& domain) const;
  std::uint64_t leastOf(const PartialStep& partial, const Domain& domain) const;
  const Candidate* best(const PartialStep& partial, const Domain& domain, std::uint32_t steps,
                        bool withOrdinaryHop) const;
  void count(PartialStep& partial, const Domain& domain) const;
  void discount(PartialStep& partial, const Domain& domain) const;

  void setBound(const PartialStep::Sum& sum, const std::uint64_t* sums, std::uint32_t steps,
                bool withOrdinaryHop, std::vector<std::uint64_t>& ahead, CostBound& bound) const;
  bool findBoundByTrial(const PartialStep& partial, const WeightChains& chains, Scratch& scratch,
                        CostBound& bound) const;
  bool tryBound(const PartialStep& partial, std::uint32_t steps, bool withOrdinaryHop,
                Scratch& scratch, CostBound& bound) const;
  bool sumUp(const PartialStep& partial, std::uint32_t steps, bool withOrdinaryHop,
             PartialStep::Sum& sum, std::vector<std::uint64_t>& sums) const;
  std::uint32_t nextStepsThatMatter(const PartialStep& partial, std::uint32_t steps) const;

  const PlanningGround* ground_;
  Kind kind_ = Kind::LastSelection;
  std::size_t domainWords_ = 0;
  std::uint32_t longestWay_ = 0;   // to an option, in hops
  std::uint32_t aheadLength_ = 0;  // of which bounds look at
  std::vector<Domain> domains_;    // by name
  std::vector<Candidate> candidates_;

  // Names that have one option, beside which everything can stand, are decided from the start.
  // Their part of what a partial step keeps up to date:
  std::uint32_t decidedSteps_ = 0;
  PartialStep::Sum decidedSum_;
  std::vector<std::uint64_t> decidedAhead_;
  std::vector<NameIndex> open_;  // the other names, ascending: the variables
};

}  // namespace tarn::evolution::pathfinder
