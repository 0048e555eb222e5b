#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "pathfinder/learning/core_guided_minimum.hpp"
#include "pathfinder/learning/plan_solver.hpp"
#include "pathfinder/learning/timeline.hpp"

namespace tarn::evolution::pathfinder {

/// How a plan of least weight can share it out.
struct WeightShare {
  std::uint64_t expensiveHops;
  std::uint64_t ordinaryHops;
  std::uint32_t layers;  ///< steps with an ordinary hop
  Literal holds;         ///< has to be true for it, and for the timeline to be kept
};

/// Finds the least weight of all plans, and proves it.
class LeastWeight {
 public:
  /// What becomes of plans of more than the least weight: they stay, for the case that lighter ones
  /// are excluded; or the formula excludes them for good, which makes it easier.
  enum class Heavier { Kept, Dropped };

  /// `fewestLayers`: no plan has fewer steps with an ordinary hop. `notePlan` is called with each
  /// plan that is met, which is the one that the check of `plans` has accepted last.
  LeastWeight(PlanSolver& plans, Timeline& timeline, std::uint32_t fewestLayers,
              std::function<void()> notePlan)
      : plans_(plans),
        timeline_(timeline),
        fewestLayers_(fewestLayers),
        notePlan_(std::move(notePlan)) {}

  /// Every share of the least weight; none when there is no plan. Asked again after plans were
  /// excluded, goes on from what was proven, if heavier ones were kept.
  std::vector<WeightShare> find(Heavier heavier);

  /// Meets plans before anything is proven: any, then ones with fewer and fewer expensive hops, and
  /// with fewer ordinary ones, as far as short searches find them.
  void meetPlans();

 private:
  /// What a way from a node on takes at least, of hops of one kind.
  using Left = std::uint32_t PlanNetwork::Node::*;

  void meetPlansWith(const std::vector<Literal>& wanted, std::vector<Literal>& kept);
  bool findFewestExpensiveHops();
  void setExpensiveCosts();
  void findFewestOrdinaryHops();
  std::vector<WeightShare> findLayers();
  std::optional<WeightShare> shareWith(std::uint32_t layers);
  std::uint64_t setOrdinaryCosts(CoreGuidedMinimum& minimum);
  std::uint64_t setCosts(CoreGuidedMinimum& minimum, PlannedHop kind, Left left);
  std::uint64_t setStartCosts(CoreGuidedMinimum& minimum, Left left);
  bool accept();
  CoreGuidedMinimum::AcceptModel acceptNoting();
  void noteProven(std::uint64_t expensiveHops, std::uint64_t ordinaryWeight) const;

  PlanSolver& plans_;
  Timeline& timeline_;
  const std::uint32_t fewestLayers_;
  const std::function<void()> notePlan_;
  Heavier heavier_ = Heavier::Kept;

  std::optional<CoreGuidedMinimum> fewestExpensive_;  // kept: what it has proven stays true
  std::uint64_t leastExpensive_ = 0;                  // that each way takes in any case
  std::uint64_t expensiveHops_ = 0;
  Literal isFewestExpensive_ = 0;

  std::optional<CoreGuidedMinimum> fewestOrdinary_;
  std::uint64_t leastOrdinary_ = 0;
  std::uint64_t ordinaryHops_ = 0;

  // The ordinary part of the weight of the best plan met with so few expensive hops.
  std::uint64_t best_ = std::numeric_limits<std::uint64_t>::max();
};

}  // namespace tarn::evolution::pathfinder
