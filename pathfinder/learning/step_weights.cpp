// One step after the other, from the last one back: an explicit step is put before those that are
// decided, and all that comes before it keeps to the timeline, with a layer less if the step has an
// ordinary hop. In it, first the most expensive hops that can be made, then the most ordinary ones.
// These numbers, proven, decide the step.
//
// Once all hops are spent, nothing can be before the first step; what a step has decides whether it
// has an ordinary hop, and without layers left there are none. These are said for speed.

#include "pathfinder/learning/step_weights.hpp"

#include <stdexcept>

#include "pathfinder/learning/most_true.hpp"
#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

StepWeights::StepWeights(PlanSolver& plans, Timeline& timeline, const WeightShare& share,
                         Literal decided)
    : plans_(plans),
      timeline_(timeline),
      steps_(plans.network, plans.formula, plans.sat),
      left_(share),
      decided_(decided) {
  plans_.sat.addClause({-decided_, share.holds});
  timeline_.extendTo(share.layers);
}

std::vector<std::uint64_t> StepWeights::find() {
  std::vector<std::uint64_t> weights;
  while (left_.expensiveHops + left_.ordinaryHops > 0) weights.push_back(decideNextStep());
  // Nothing is left to be done before the first step.
  for (NodeIndex node = 0; node < plans_.network.nodes.size(); ++node) {
    plans_.sat.addClause(
        {-decided_, -steps_.isEnteredBefore(node, steps_.count()), plans_.formula.startsAt(node)});
  }
  return weights;
}

std::uint64_t StepWeights::decideNextStep() {
  steps_.add();
  const std::uint32_t step = steps_.count();
  const std::vector<Literal> ordinary = hopsMadeIn(step, PlannedHop::Ordinary);
  const std::vector<Literal> expensive = hopsMadeIn(step, PlannedHop::Expensive);
  const Literal hasOrdinary = ordinaryHopIn(step, ordinary);
  const Literal isNext = plans_.sat.newVariable();
  plans_.sat.addClause({-isNext, hasOrdinary, steps_.isRestWithin(timeline_, left_.layers)});
  if (left_.layers > 0) {
    plans_.sat.addClause({-isNext, -hasOrdinary, steps_.isRestWithin(timeline_, left_.layers - 1)});
  } else {
    plans_.sat.addClause({-decided_, -hasOrdinary});
  }
  std::vector<Literal> hops = expensive;
  hops.insert(hops.end(), ordinary.begin(), ordinary.end());
  MostTrue most(plans_, {decided_, isNext}, std::move(hops));
  const std::uint64_t expensiveHops =
      left_.expensiveHops == 0 ? 0 : most.decide(expensive, decided_);
  const std::uint64_t ordinaryHops = left_.ordinaryHops == 0 ? 0 : most.decide(ordinary, decided_);
  if (expensiveHops + ordinaryHops == 0) throw std::logic_error("a last step without hops");
  plans_.sat.addClause({-decided_, ordinaryHops > 0 ? hasOrdinary : -hasOrdinary});
  left_.expensiveHops -= expensiveHops;
  left_.ordinaryHops -= ordinaryHops;
  if (ordinaryHops > 0) --left_.layers;
  return stepWeight(expensiveHops * expensiveHopWeight + ordinaryHops);
}

std::vector<Literal> StepWeights::hopsMadeIn(std::uint32_t step, PlannedHop hop) {
  std::vector<Literal> result;
  for (ArcIndex arc = 0; arc < plans_.network.arcs.size(); ++arc) {
    if (plans_.network.arcs[arc].hop != hop || !steps_.mayBeIn(arc, step)) continue;
    result.push_back(steps_.isMadeIn(arc, step));
  }
  return result;
}

/// A new literal that is true just if the step has an ordinary hop.
Literal StepWeights::ordinaryHopIn(std::uint32_t step, const std::vector<Literal>& made) {
  const Literal result = plans_.sat.newVariable();
  std::vector<Literal> clause = made;
  clause.push_back(-result);
  plans_.sat.addClause(clause);
  for (ArcIndex arc = 0; arc < plans_.network.arcs.size(); ++arc) {
    const bool isOrdinary = plans_.network.arcs[arc].hop == PlannedHop::Ordinary;
    if (!isOrdinary || !steps_.mayBeIn(arc, step)) continue;
    const NodeIndex entered = plans_.network.arcs[arc].to;
    plans_.sat.addClause({result, -plans_.formula.isUsed(arc),
                          -steps_.isEnteredBefore(entered, step - 1),
                          steps_.isEnteredBefore(entered, step)});
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
