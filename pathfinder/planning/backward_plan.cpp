#include "pathfinder/planning/backward_plan.hpp"

namespace tarn::evolution::pathfinder {

BackwardPlan BackwardPlan::ofOneWay(std::size_t sources,
                                    const std::vector<VersionSelection>& selections,
                                    const std::vector<std::vector<PlannedHop>>& hops,
                                    const std::vector<std::uint64_t>& weights) {
  BackwardPlan plan(selections.front().size(), sources);
  for (const VersionSelection& selection : selections) plan.selections_.intern(selection);
  plan.regularSources_ = 1;
  PlanCost cost;
  for (auto after = static_cast<SelectionIndex>(hops.size());; --after) {
    plan.improve(plan.continuationOf(after), cost);
    if (after < hops.size()) plan.addStep(plan.continuationOf(after), hops[after], after + 1);
    if (after == 0) break;
    const std::uint64_t weight = weights[hops.size() - after];
    cost = {cost.total + weight, plan.chains_.append(cost.weights, weight)};
  }
  plan.cost_ = cost;
  return plan;
}

BackwardPlan::Continuation& BackwardPlan::continuationOf(SelectionIndex selection) {
  if (selection >= continuations_.size()) continuations_.resize(selections_.size());
  return continuations_[selection];
}

bool BackwardPlan::improve(Continuation& continuation, const PlanCost& cost) const {
  if (continuation.isReached && !comesFirst(chains_, boundOf(cost), boundOf(continuation.cost))) {
    return false;
  }
  continuation = {cost, noStep, true};
  return true;
}

void BackwardPlan::addStep(Continuation& continuation, std::span<const PlannedHop> hops,
                           SelectionIndex after) {
  const std::uint32_t added = hops_.add(hops);
  steps_.push_back({after, continuation.firstStep});
  continuation.firstStep = added;
}

std::vector<std::uint64_t> BackwardPlan::weights() const {
  std::vector<std::uint64_t> result(chains_.length(cost_.weights));
  chains_.copy(cost_.weights, 0, chains_.length(cost_.weights), result.data());
  return result;
}

std::vector<SelectionIndex> BackwardPlan::bestSelections() const {
  std::vector<SelectionIndex> result;
  std::vector<bool> isListed(selections_.size());
  const auto list = [&](SelectionIndex selection) {
    if (isListed[selection]) return;
    isListed[selection] = true;
    result.push_back(selection);
  };
  const auto listStep = [&](std::span<const PlannedHop> /*hops*/, SelectionIndex after) {
    list(after);
  };
  for (SelectionIndex source = 0; source < regularSources_; ++source) {
    if (source < continuations_.size() && continuations_[source].isReached &&
        continuations_[source].cost == cost_) {
      list(source);
    }
  }
  for (std::size_t source = 0; source < irregular_.size(); ++source) {
    if (isBestFromIrregular(source)) visit(stepsFromIrregular(source), listStep);
  }
  // The list grows on the way.
  for (std::size_t i = 0; i < result.size(); ++i) {  // NOLINT(modernize-loop-convert)
    visit(stepsFrom(result[i]), listStep);
  }
  return result;
}

std::vector<VersionIndex> BackwardPlan::bestVersions() const {
  std::vector<VersionIndex> versions;
  for (const SelectionIndex selection : bestSelections()) {
    const SelectionView held = selections_[selection];
    versions.insert(versions.end(), held.begin(), held.end());
  }
  return versions;
}

std::size_t BackwardPlan::bytes() const {
  return chains_.bytes() + selections_.bytes() + continuations_.capacity() * sizeof(Continuation) +
         steps_.capacity() * sizeof(Step) + hops_.bytes();
}

bool comesFirst(const BackwardPlan& left, const BackwardPlan& right) {
  const std::vector<std::uint64_t> weights = left.weights();
  const std::vector<std::uint64_t> others = right.weights();
  return order(left.chains(), {left.cost().total, WeightChains::empty, weights},
               {right.cost().total, WeightChains::empty, others}) < 0;
}

}  // namespace tarn::evolution::pathfinder
