#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "pathfinder/coexistence.hpp"
#include "pathfinder/outlook.hpp"
#include "pathfinder/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// Step weights from the last step of a path back.
using WeightSequence = std::vector<std::uint64_t>;

/// What a plan costs. As a bound: the least total, and the heaviest possible weights.
struct PlanCost {
  std::uint64_t total = 0;
  WeightSequence weights;

  bool operator==(const PlanCost&) const = default;
};

/// Whether, of two plans, the one that costs `left` comes first: the one with the smaller total or,
/// of equal totals, the one that is heavier where the step weights first differ, or that ends
/// there.
bool comesFirst(const PlanCost& left, const PlanCost& right);

/// The ways to go one step back from a selection, formed name by name: there are exponentially
/// many, and a step of which some names are decided already tells what the others can still do.
///
/// Each name has options: to stay where it is, to come over one of the hops that lead to its
/// version, or, if a link can bring the version in, to have been absent. The formation of a last
/// selection, after which there is no step, has the versions that a target admits for options.
///
/// A step has an ordinary hop or, if there is an expensive one, may do without.
class StepFormation {
 public:
  struct Option {
    VersionIndex before = 0;
    std::uint64_t hop = 0;            ///< the hop's weight; 0 for no hop
    bool withoutOrdinaryHop = false;  ///< only for a step that has none
  };

  /// The best options of all names together, for some number of steps before.
  struct Sum {
    std::uint64_t least = 0;  ///< hops and distances
    std::uint64_t hops = 0;
    std::uint32_t unmet = 0;  ///< names that have no option for that number of steps
  };

  /// A step of which the rows before `next` are decided. An option is open while it can stand
  /// beside the options decided.
  struct Partial {
    std::size_t next = 0;

    /// Whether the sums below are out of date. The bound of such a step is good enough to put it in
    /// its place among others; most of them are never looked at again.
    bool isRough = false;

    /// How many steps with an ordinary hop are before this one: the fewest that every name needs.
    std::uint32_t steps = 0;

    // Kept up to date so that a bound need not look at every name again.
    std::uint64_t leastEver = 0;  ///< of the options, for any number of steps before
    Sum sum;                      ///< for `steps` before, with an ordinary hop in a step

    /// The open options, a bit each, and the retreats of the sum, entry by entry. In one piece,
    /// because there are many partial steps.
    std::vector<std::uint64_t> words;
  };

  /// What all formations of one search share.
  struct Ground {
    const SearchSpace& space;
    const Coexistence& coexistence;
    const Outlooks& outlooks;
  };

  /// What is formed.
  enum class Kind {
    LastSelection,
    Step,                 ///< with an ordinary hop, or without
    StepWithOrdinaryHop,  ///< there are no others to choose from
  };

  /// Without names yet.
  StepFormation(const Ground& ground, Kind kind);

  /// Gives the name that is being added an option, unless it leads to where no path goes.
  void addOption(const Option& option);

  /// Ends the name that is being added; names are added in ascending order.
  void endName();

  /// Everything open.
  Partial begin() const;

  /// Decides the next rows as long as they have one option each; false when one has none left.
  bool settle(Partial& partial) const;

  bool isComplete(const Partial& partial) const { return partial.next == open_.size(); }

  /// Calls `visit(Partial&&)` with the partial steps that decide the next row, one for each of its
  /// open options.
  template <class Visit>
  void branch(const Partial& partial, const Visit& visit) const {
    const Row& row = names_[open_[partial.next]];
    for (std::size_t candidate = row.first; candidate < row.end; ++candidate) {
      if (!isOpen(partial, candidate)) continue;
      Partial narrowed = partial;
      if (!decide(narrowed, candidate)) continue;
      ++narrowed.next;
      if (settle(narrowed)) visit(std::move(narrowed));
    }
  }

  /// Finds the least total of the step and all before it, and the heaviest weights among those of
  /// that total; false when a name has no option that leads back to a source. `bound` is
  /// overwritten.
  bool findBound(const Partial& partial, PlanCost& bound) const;

  /// Brings a rough step's sums up to date, so that its bound is as good as can be.
  void refine(Partial& partial) const;

  /// The option of each name of a complete step; none when these make no step.
  std::vector<Option> chosen(const Partial& partial) const;

 private:
  struct Candidate {
    Option option;
    std::uint64_t least;  // the hop and the distance before it
    const Outlook* outlook;
  };

  /// A name's candidates, the best first: least weight, then heaviest hop, then heaviest retreat.
  struct Row {
    std::size_t first;
    std::size_t end;
  };

  bool isOpen(const Partial& partial, std::size_t candidate) const {
    return (partial.words[candidate / 64] >> (candidate % 64) & 1) != 0;
  }
  void close(Partial& partial, std::size_t candidate) const {
    partial.words[candidate / 64] &= ~(std::uint64_t{1} << (candidate % 64));
  }
  bool decide(Partial& partial, std::size_t candidate) const;
  std::uint32_t fewestSteps(const Partial& partial, const Row& row) const;
  bool isStep() const { return kind_ != Kind::LastSelection; }
  std::uint64_t leastOf(const Partial& partial, const Row& row) const;
  const Candidate* best(const Partial& partial, const Row& row, std::uint32_t steps,
                        bool withOrdinaryHop) const;

  bool isDecided(NameIndex name) const;
  void addDecided(const Candidate& candidate);
  void count(Partial& partial, const Row& row) const;
  void discount(Partial& partial, const Row& row) const;
  void recount(Partial& partial) const;

  void setBound(PlanCost& bound, const Sum& sum, const std::uint64_t* retreats, std::uint32_t steps,
                bool withOrdinaryHop) const;
  bool findBoundByTrial(const Partial& partial, PlanCost& bound) const;
  bool sumUp(const Partial& partial, std::uint32_t steps, bool withOrdinaryHop, Sum& sum,
             WeightSequence& retreats) const;

  const Ground& ground_;
  const Kind kind_;
  std::size_t openWords_ = 0;
  std::size_t retreatLength_ = 0;  // of the longest
  std::vector<Row> names_;
  std::vector<Candidate> candidates_;

  // Names that have one option, beside which everything can stand, are decided from the start.
  // Their part of what a partial step keeps up to date:
  std::uint32_t decidedSteps_ = 0;
  Sum decidedSum_;
  std::vector<std::uint64_t> decidedRetreats_;
  std::vector<NameIndex> open_;  // the other names, ascending
};

}  // namespace tarn::evolution::pathfinder
