// As in a timeline, one literal for each node and step, "entered before", monotone; a hop comes in
// a later step than the one before of its name, and an order carries over to the steps. A node from
// which a way takes k more hops is entered before the k last steps, and one that no hop leads to
// before all: there it takes no literal but "held", and what would be said of it follows.
// That a start is entered before every step is said for speed: nothing asks when it is.

#include "pathfinder/learning/last_steps.hpp"

namespace tarn::evolution::pathfinder {

LastSteps::LastSteps(const PlanNetwork& network, const PlanFormula& formula, SatSolver& solver)
    : network_(network), formula_(formula), solver_(solver), before_(1) {
  for (NodeIndex node = 0; node < network.nodes.size(); ++node) {
    before_[0].push_back(formula.isHeld(node));
  }
}

void LastSteps::add() {
  const std::uint32_t step = count() + 1;
  std::vector<Literal> before = before_.back();
  for (NodeIndex node = 0; node < network_.nodes.size(); ++node) {
    if (isSurelyBefore(node, step)) continue;
    if (solver_.isNever(before[node])) continue;
    before[node] = solver_.newVariable();
    solver_.addClause({-before[node], before_.back()[node]});
    if (formula_.startsAt(node) == formula_.never()) continue;
    solver_.addClause({-formula_.startsAt(node), before[node]});
  }
  for (ArcIndex index = 0; index < network_.arcs.size(); ++index) {
    const PlanNetwork::Arc& arc = network_.arcs[index];
    if (isSurelyBefore(arc.from, step) || solver_.isNever(formula_.isUsed(index))) continue;
    solver_.addClause({-formula_.isUsed(index), -before_.back()[arc.to], before[arc.from]});
  }
  for (NodeIndex left = 0; left < network_.nodes.size(); ++left) {
    for (const PlanFormula::Order& order : formula_.ordersOf(left)) {
      if (network_.nodes[order.entered].in.empty() || solver_.isNever(order.literal)) continue;
      for (const ArcIndex arc : network_.nodes[left].out) {
        if (isSurelyBefore(network_.arcs[arc].to, step)) continue;
        solver_.addClause({-order.literal, -formula_.isUsed(arc), -before[order.entered],
                           formula_.startsAt(order.entered), before[network_.arcs[arc].to]});
      }
    }
    if (isSurelyBefore(left, step)) continue;
    for (const PlanFormula::Order& order : formula_.broughtInWith(left)) {
      solver_.addClause({-order.literal, -before[order.entered], before[left]});
    }
  }
  before_.push_back(std::move(before));
}

Literal LastSteps::isMadeIn(ArcIndex arc, std::uint32_t step) {
  const NodeIndex entered = network_.arcs[arc].to;
  const Literal result = solver_.newVariable();
  const bool isOnlyWay =
      network_.nodes[entered].in.size() == 1 && formula_.startsAt(entered) == formula_.never();
  if (!isOnlyWay) solver_.addClause({-result, formula_.isUsed(arc)});
  solver_.addClause({-result, before_[step - 1][entered]});
  solver_.addClause({-result, -before_[step][entered]});
  return result;
}

Literal LastSteps::isRestWithin(const Timeline& timeline, std::uint32_t layers) {
  const Literal result = solver_.newVariable();
  for (NodeIndex node = 0; node < network_.nodes.size(); ++node) {
    if (network_.nodes[node].in.empty()) continue;
    solver_.addClause({-result, -before_.back()[node], timeline.isEnteredAfter(node, layers)});
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
