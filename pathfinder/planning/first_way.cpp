// From the source on, the step whose combination comes first. Every step that is kept with a
// selection lies on a best way, so that none has to be taken back.

#include "pathfinder/planning/first_way.hpp"

#include <utility>

#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/planning/step_digits.hpp"

namespace tarn::evolution::pathfinder {

namespace {

struct FirstStep {
  StepDigits digits;
  std::vector<PlannedHop> hops;
  SelectionIndex after = SearchSpace::none;
};

FirstStep firstStepFrom(const SearchSpace& space, const BackwardPlan& plan,
                        SelectionIndex selection) {
  FirstStep first;
  plan.visit(plan.stepsFrom(selection),
             [&](std::span<const PlannedHop> hops, SelectionIndex after) {
               StepDigits digits =
                   digitsOf(space, plan.selections()[selection], hops, plan.selections()[after]);
               if (first.after != SearchSpace::none && first.digits <= digits) return;
               first = {std::move(digits), {hops.begin(), hops.end()}, after};
             });
  return first;
}

}  // namespace

BackwardPlan firstWayOf(const SearchSpace& space, const BackwardPlan& plan) {
  const std::vector<std::uint64_t> weights = plan.weights();
  std::vector<VersionSelection> selections{space.sources.front().selection};
  std::vector<std::vector<PlannedHop>> hops;
  SelectionIndex selection = plan.selections().find(selections.front());
  for (std::size_t step = 0; step < weights.size(); ++step) {
    checkpoint();
    FirstStep first = firstStepFrom(space, plan, selection);
    selection = first.after;
    const SelectionView after = plan.selections()[selection];
    selections.emplace_back(after.begin(), after.end());
    hops.push_back(std::move(first.hops));
  }
  return BackwardPlan::ofOneWay(1, selections, hops, weights);
}

}  // namespace tarn::evolution::pathfinder
