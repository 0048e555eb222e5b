#include "pathfinder/planning/backward_plan.hpp"

namespace tarn::evolution::pathfinder {

bool BackwardPlan::improve(SelectionIndex selection, const PlanCost& cost) {
  if (selection >= continuations_.size()) continuations_.resize(selection + std::size_t{1});
  Continuation& known = continuations_[selection];
  if (known.isReached && !comesFirst(chains_, boundOf(cost), boundOf(known.cost))) return false;
  known = {cost, noStep, true};
  return true;
}

void BackwardPlan::addStep(SelectionIndex before, std::span<const PlannedHop> hops,
                           SelectionIndex after) {
  std::uint32_t& first = continuations_[before].firstStep;
  const std::uint32_t added = hops_.add(hops);
  steps_.push_back({after, first});
  first = added;
}

std::size_t BackwardPlan::bytes() const {
  return chains_.bytes() + selections_.bytes() + continuations_.capacity() * sizeof(Continuation) +
         steps_.capacity() * sizeof(Step) + hops_.bytes();
}

}  // namespace tarn::evolution::pathfinder
