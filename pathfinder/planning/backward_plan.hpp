#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "pathfinder/planning/plan_cost.hpp"
#include "pathfinder/planning/row_store.hpp"
#include "pathfinder/planning/selection_table.hpp"

namespace tarn::evolution::pathfinder {

/// What a name does in a planned step.
enum class PlannedHop : std::uint8_t { None, Ordinary, Expensive };

/// Some steps of a plan.
struct PlannedSteps {
  std::uint32_t first;
};

/// The best ways, over selections of versions, from the sources to a target: the least total
/// weight, the step weights that come first among those of that total, and every step that lies on
/// such a way.
///
/// Plans leave out which linked metamodel of a version is meant, so not every plan can be carried
/// out; but every path has its plan, and where there is no plan there is no path.
class BackwardPlan {
 public:
  BackwardPlan(std::size_t names, std::size_t sources)
      : selections_(names), irregular_(sources), hops_(names) {}

  /// A plan of just one way: its selections, all different, the first one a source's, the hops
  /// between them, and the step weights, the last step first.
  static BackwardPlan ofOneWay(std::size_t sources, const std::vector<VersionSelection>& selections,
                               const std::vector<std::vector<PlannedHop>>& hops,
                               const std::vector<std::uint64_t>& weights);

  const WeightChains& chains() const { return chains_; }
  const SelectionTable& selections() const { return selections_; }

  /// The cost of the best plans, and their step weights, the last step first.
  const PlanCost& cost() const { return cost_; }
  std::vector<std::uint64_t> weights() const;

  /// The selections that best plans hold.
  std::vector<SelectionIndex> bestSelections() const;

  /// The versions of these, with what stands for none.
  std::vector<VersionIndex> bestVersions() const;

  /// Whether anything is planned from a selection of the table on, and what that costs.
  bool reaches(SelectionIndex selection) const {
    return selection < continuations_.size() && continuations_[selection].isReached;
  }
  const PlanCost& costFrom(SelectionIndex selection) const {
    return continuations_[selection].cost;
  }

  /// The steps planned next after a selection.
  PlannedSteps stepsFrom(SelectionIndex selection) const {
    return {continuations_[selection].firstStep};
  }

  /// The same for a source that is not regular: whether a best plan begins there, and with which
  /// steps.
  bool isBestFromIrregular(std::size_t source) const {
    return irregular_[source].isReached && irregular_[source].cost == cost_;
  }
  PlannedSteps stepsFromIrregular(std::size_t source) const {
    return {irregular_[source].firstStep};
  }

  /// Calls `visit(hops, after)` for each of these steps: what each name does, and the selection
  /// after it.
  template <class Visit>
  void visit(PlannedSteps steps, const Visit& visit) const {
    for (std::uint32_t step = steps.first; step != noStep; step = steps_[step].next) {
      visit(hops_[step], steps_[step].after);
    }
  }

  /// What is planned takes that much memory.
  std::size_t bytes() const;

 private:
  friend class PlanSearch;

  static constexpr std::uint32_t noStep = ~std::uint32_t{0};

  struct Continuation {
    PlanCost cost;
    std::uint32_t firstStep = noStep;
    bool isReached = false;
  };

  struct Step {
    SelectionIndex after;
    std::uint32_t next;  ///< another step from the same selection
  };

  /// Takes the cost of another way on. Whether it is the best one so far: then all steps planned
  /// from there are forgotten.
  bool improve(Continuation& continuation, const PlanCost& cost) const;

  Continuation& continuationOf(SelectionIndex selection);

  void addStep(Continuation& continuation, std::span<const PlannedHop> hops, SelectionIndex after);

  WeightChains chains_;
  SelectionTable selections_;
  std::vector<Continuation> continuations_;  // by selection
  std::vector<Continuation> irregular_;      // by source of the question
  std::vector<Step> steps_;
  RowStore<PlannedHop> hops_;  // by step
  PlanCost cost_;
  std::uint32_t regularSources_ = 0;  // they are the first selections of the table
};

/// Whether the cost of one comes before that of the other, step weights included.
bool comesFirst(const BackwardPlan& left, const BackwardPlan& right);

}  // namespace tarn::evolution::pathfinder
