#pragma once

#include <cstdint>
#include <vector>

#include "pathfinder/learning/last_steps.hpp"
#include "pathfinder/learning/least_weight.hpp"
#include "pathfinder/learning/plan_solver.hpp"
#include "pathfinder/learning/timeline.hpp"

namespace tarn::evolution::pathfinder {

/// Finds, among the plans of one share of the weight, the step weights that come first: the last
/// step as heavy as it can be, then the one before it, and so on.
class StepWeights {
 public:
  /// `decided`: what is decided has to hold only if that is true.
  StepWeights(PlanSolver& plans, Timeline& timeline, const WeightShare& share, Literal decided);

  /// The weights, the last step first.
  std::vector<std::uint64_t> find();

  /// The steps of the plans that have these weights, and what has to be true for it.
  LastSteps& steps() { return steps_; }
  Literal decided() const { return decided_; }

 private:
  std::uint64_t decideNextStep();
  std::vector<Literal> hopsMadeIn(std::uint32_t step, PlannedHop hop);
  Literal ordinaryHopIn(std::uint32_t step, const std::vector<Literal>& made);

  PlanSolver& plans_;
  Timeline& timeline_;
  LastSteps steps_;
  WeightShare left_;  // for the steps before those that are decided
  Literal decided_;
};

}  // namespace tarn::evolution::pathfinder
