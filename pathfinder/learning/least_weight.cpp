// Three minimizations by one solver, each under what the one before has proven:
//
//   1. the fewest expensive hops; none at all: there is no plan, of whatever length;
//   2. the fewest ordinary hops with so few expensive ones: with the fewest layers that any name
//      needs a lower bound, and with the layers of the model at hand an upper one;
//   3. if a gap is left between these, for each number of layers in it the fewest ordinary hops
//      that can be made in so many, on a timeline.
//
// Where heavier plans are dropped, what is proven of the lightest ones becomes part of the formula
// as soon as it is known, and settles most of it: what comes after is said of the rest only.
//
// Costs are reduced: a hop costs what it adds to the least that its name takes anyway, so that most
// hops cost nothing. Steps of expensive hops alone are not counted: they weigh nothing of their
// own.

#include "pathfinder/learning/least_weight.hpp"

#include <algorithm>

#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

using Outcome = CoreGuidedMinimum::Outcome;

namespace {

constexpr int conflictsToMeetPlan = 1000;
constexpr std::uint64_t noLimit = std::numeric_limits<std::uint64_t>::max();

}  // namespace

std::vector<WeightShare> LeastWeight::find(Heavier heavier) {
  heavier_ = heavier;
  best_ = std::numeric_limits<std::uint64_t>::max();
  if (!findFewestExpensiveHops()) return {};
  findFewestOrdinaryHops();
  return findLayers();
}

void LeastWeight::meetPlans() {
  if (!plans_.findPlan({})) return;
  notePlan_();
  setExpensiveCosts();
  std::vector<Literal> kept;
  meetPlansWith(fewestExpensive_->stillWanted(), kept);
  CoreGuidedMinimum ordinary(plans_.sat);
  setOrdinaryCosts(ordinary);
  if (plans_.findPlan(kept)) meetPlansWith(ordinary.stillWanted(), kept);
}

/// From the plan at hand on, keeps true what is, and tries to have one more wanted literal true.
void LeastWeight::meetPlansWith(const std::vector<Literal>& wanted, std::vector<Literal>& kept) {
  std::vector<Literal> open = wanted;
  const auto keepTrue = [&] {
    std::erase_if(open, [&](Literal literal) {
      if (!plans_.sat.isTrue(literal)) return false;
      kept.push_back(literal);
      return true;
    });
  };
  keepTrue();
  while (!open.empty()) {
    kept.push_back(open.back());
    open.pop_back();
    bool isFound = false;
    while (!isFound && plans_.sat.satisfies(kept, conflictsToMeetPlan)) isFound = accept();
    if (isFound) {
      keepTrue();
    } else {
      kept.pop_back();
    }
  }
}

void LeastWeight::setExpensiveCosts() {
  if (fewestExpensive_) return;
  fewestExpensive_.emplace(plans_.sat);
  leastExpensive_ =
      setCosts(*fewestExpensive_, PlannedHop::Expensive, &PlanNetwork::Node::expensiveLeft);
}

std::uint64_t LeastWeight::setOrdinaryCosts(CoreGuidedMinimum& minimum) {
  return setCosts(minimum, PlannedHop::Ordinary, &PlanNetwork::Node::ordinaryLeft);
}

bool LeastWeight::findFewestExpensiveHops() {
  setExpensiveCosts();
  const auto outcome = fewestExpensive_->minimize(
      {}, [this] { return accept(); }, noLimit,
      [this](std::uint64_t paid) { noteProven(leastExpensive_ + paid, fewestLayers_); });
  if (outcome != Outcome::Found) return false;
  expensiveHops_ = leastExpensive_ + fewestExpensive_->lowerBound();
  isFewestExpensive_ = plans_.allOf(fewestExpensive_->stillWanted());
  if (heavier_ == Heavier::Dropped) plans_.sat.addClause({isFewestExpensive_});
  best_ = plans_.check.ordinaryHops() + plans_.check.ordinarySteps();
  return true;
}

void LeastWeight::findFewestOrdinaryHops() {
  fewestOrdinary_.emplace(plans_.sat);
  leastOrdinary_ = setOrdinaryCosts(*fewestOrdinary_);
  fewestOrdinary_->minimize({isFewestExpensive_}, acceptNoting(), noLimit,
                            [this](std::uint64_t paid) {
                              noteProven(expensiveHops_, leastOrdinary_ + paid + fewestLayers_);
                            });
  ordinaryHops_ = leastOrdinary_ + fewestOrdinary_->lowerBound();
  if (heavier_ == Heavier::Dropped) {
    fewestOrdinary_->dropDearerThan(best_ - ordinaryHops_ - fewestLayers_);
  }
}

std::vector<WeightShare> LeastWeight::findLayers() {
  if (heavier_ == Heavier::Dropped) {
    timeline_.limitTo(static_cast<std::uint32_t>(best_ - ordinaryHops_));
  }
  std::vector<WeightShare> shares;
  for (std::uint32_t layers = fewestLayers_; layers + ordinaryHops_ <= best_; ++layers) {
    const auto share = shareWith(layers);
    if (!share) continue;
    const std::uint64_t weight = share->ordinaryHops + layers;
    if (weight < best_) shares.clear();
    best_ = std::min(best_, weight);
    shares.push_back(*share);
  }
  // Some were found while the best one was not known yet.
  std::erase_if(shares, [this](const WeightShare& share) {
    return share.ordinaryHops + share.layers != best_;
  });
  if (heavier_ == Heavier::Dropped && shares.size() == 1) {
    plans_.sat.addClause({shares.front().holds});
  }
  noteProven(expensiveHops_, best_);
  return shares;
}

/// The fewest ordinary hops that can be made in so many layers, if no better plan is known.
std::optional<WeightShare> LeastWeight::shareWith(std::uint32_t layers) {
  timeline_.extendTo(layers);
  const Literal isWithin = plans_.sat.newVariable();
  for (NodeIndex node = 0; node < plans_.network.nodes.size(); ++node) {
    if (plans_.network.nodes[node].in.empty()) continue;
    plans_.sat.addClause(
        {-isWithin, -plans_.formula.isHeld(node), timeline_.isEnteredAfter(node, layers)});
  }
  CoreGuidedMinimum minimum = *fewestOrdinary_;
  const auto outcome = minimum.minimize({isFewestExpensive_, isWithin}, acceptNoting(),
                                        best_ - layers - leastOrdinary_ + 1);
  if (outcome != Outcome::Found) return std::nullopt;
  std::vector<Literal> needed = minimum.stillWanted();
  needed.push_back(isFewestExpensive_);
  return WeightShare{expensiveHops_, leastOrdinary_ + minimum.lowerBound(), layers,
                     plans_.allOf(needed)};
}

/// Lets hops of a kind and sources cost what they add; returns what is paid in any case.
std::uint64_t LeastWeight::setCosts(CoreGuidedMinimum& minimum, PlannedHop kind, Left left) {
  const PlanNetwork& network = plans_.network;
  for (ArcIndex index = 0; index < network.arcs.size(); ++index) {
    const PlanNetwork::Arc& arc = network.arcs[index];
    const std::uint32_t cost =
        (arc.hop == kind ? 1 : 0) + network.nodes[arc.to].*left - network.nodes[arc.from].*left;
    if (cost > 0) minimum.want(-plans_.formula.isUsed(index), cost);
  }
  if (!network.starts.empty()) return setStartCosts(minimum, left);
  std::vector<std::uint64_t> sums;
  for (const std::vector<NodeIndex>& nodes : network.sources) {
    std::uint64_t& sum = sums.emplace_back(0);
    for (const NodeIndex node : nodes) sum += network.nodes[node].*left;
  }
  const std::uint64_t least = *std::min_element(sums.begin(), sums.end());
  for (std::size_t i = 0; i < sums.size(); ++i) {
    if (sums[i] > least) minimum.want(-plans_.formula.isSource(i), sums[i] - least);
  }
  return least;
}

/// The same for an open start, name by name.
std::uint64_t LeastWeight::setStartCosts(CoreGuidedMinimum& minimum, Left left) {
  std::uint64_t sum = 0;
  for (const std::vector<NodeIndex>& nodes : plans_.network.starts) {
    std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
    for (const NodeIndex node : nodes) {
      least = std::min<std::uint64_t>(least, plans_.network.nodes[node].*left);
    }
    for (const NodeIndex node : nodes) {
      const std::uint64_t cost = plans_.network.nodes[node].*left - least;
      if (cost > 0) minimum.want(-plans_.formula.startsAt(node), cost);
    }
    sum += least;
  }
  return sum;
}

bool LeastWeight::accept() {
  if (!plans_.check.accept()) return false;
  notePlan_();
  return true;
}

/// Takes the weight of every plan that is met for an upper bound.
CoreGuidedMinimum::AcceptModel LeastWeight::acceptNoting() {
  return [this] {
    if (!accept()) return false;
    best_ = std::min(best_, plans_.check.ordinaryHops() + plans_.check.ordinarySteps());
    return true;
  };
}

void LeastWeight::noteProven(std::uint64_t expensiveHops, std::uint64_t ordinaryWeight) const {
  SearchWatch* watch = SearchWatch::current();
  if (watch == nullptr || plans_.network.isCut) return;  // ways of more laps may be lighter
  watch->noteProven(expensiveHops * expensiveHopWeight + ordinaryWeight);
}

}  // namespace tarn::evolution::pathfinder
