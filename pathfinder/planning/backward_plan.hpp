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

/// The best ways, over selections of versions, from the sources to a target: the least total
/// weight, the step weights that come first among those of that total, and every step that lies on
/// such a way.
///
/// Plans leave out which linked metamodel of a version is meant, so not every plan can be carried
/// out; but every path has its plan, and where there is no plan there is no path.
class BackwardPlan {
 public:
  explicit BackwardPlan(std::size_t names) : selections_(names), hops_(names) {}

  const WeightChains& chains() const { return chains_; }
  const SelectionTable& selections() const { return selections_; }

  /// The cost of the best plans.
  const PlanCost& cost() const { return cost_; }

  /// Whether anything is planned from a selection of the table on, and what that costs.
  bool reaches(SelectionIndex selection) const { return continuations_[selection].isReached; }
  const PlanCost& costFrom(SelectionIndex selection) const {
    return continuations_[selection].cost;
  }

  /// Calls `visit(hops, after)` for each step that is planned next after a selection: what each
  /// name does, and the selection after it.
  template <class Visit>
  void visitStepsFrom(SelectionIndex selection, const Visit& visit) const {
    std::uint32_t step = continuations_[selection].firstStep;
    for (; step != noStep; step = steps_[step].next) visit(hops_[step], steps_[step].after);
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

  /// Takes the cost of another way on from a selection. Whether it is the best one so far: then all
  /// steps planned from there are forgotten.
  bool improve(SelectionIndex selection, const PlanCost& cost);

  void addStep(SelectionIndex before, std::span<const PlannedHop> hops, SelectionIndex after);

  WeightChains chains_;
  SelectionTable selections_;
  std::vector<Continuation> continuations_;  // by selection
  std::vector<Step> steps_;
  RowStore<PlannedHop> hops_;  // by step
  PlanCost cost_;
};

}  // namespace tarn::evolution::pathfinder
