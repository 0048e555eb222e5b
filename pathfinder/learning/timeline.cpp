// An order encoding: one literal for each node and phase, "entered by then", monotone in the phase
// and false before the first one in which bounds allow the node.
// An order between nodes carries over to the phases in which they are left and entered, and a hop
// comes in a later phase than the one before of its name, or in the same gap. So does what links
// bring in, which may happen in any phase.
//
// A node that no hop leads to which can be made in a gap has the same literal in a gap as in the
// layer before, and clauses about literals that stay are not repeated. One that no hop leads to at
// all has no literal but "held".
//
// That what is entered stays so, that only what is held is entered, and a start from the beginning,
// is said for speed: an assignment without that can be made into one with it. Of the phases that
// are added together, "held" is said of the last one; the others follow.

#include "pathfinder/learning/timeline.hpp"

#include <algorithm>

namespace tarn::evolution::pathfinder {

Timeline::Timeline(const PlanNetwork& network, const PlanFormula& formula, SatSolver& solver)
    : network_(network),
      formula_(formula),
      solver_(solver),
      entered_(network.nodes.size()),
      followed_(network.nodes.size()) {
  for (const PlanNetwork::Node& node : network.nodes) {
    mayBeEnteredInGap_.push_back(std::any_of(node.in.begin(), node.in.end(), [&](ArcIndex arc) {
      return network.arcs[arc].hop != PlannedHop::Ordinary;
    }));
  }
}

void Timeline::extendTo(std::uint32_t layers) {
  for (NodeIndex left = 0; left < network_.nodes.size(); ++left) {
    const auto orders = formula_.ordersOf(left);
    for (std::size_t i = followed_[left]; i < orders.size(); ++i) {
      for (std::uint32_t phase = 0; phase < phases_; ++phase) follow(left, orders[i], phase);
    }
    followed_[left] = orders.size();
  }
  if (phases_ > 2 * layers) return;
  while (phases_ <= 2 * layers) addPhase();
  for (NodeIndex node = 0; node < network_.nodes.size(); ++node) {
    solver_.addClause({-entered_[node].back(), formula_.isHeld(node)});
  }
}

void Timeline::addPhase() {
  const std::uint32_t phase = phases_++;
  for (NodeIndex node = 0; node < network_.nodes.size(); ++node) {
    if (network_.nodes[node].in.empty()) {
      entered_[node].push_back(formula_.isHeld(node));
      continue;
    }
    if (phase + 1 < 2 * network_.nodes[node].ordinaryStepsBefore ||
        solver_.isNever(formula_.isHeld(node))) {
      entered_[node].push_back(formula_.never());
      continue;
    }
    if (phase > 0 && phase % 2 == 0 && !mayBeEnteredInGap_[node]) {
      entered_[node].push_back(entered_[node].back());
      continue;
    }
    const Literal entered = solver_.newVariable();
    entered_[node].push_back(entered);
    if (phase > 0) solver_.addClause({-entered_[node][phase - 1], entered});
    if (formula_.startsAt(node) == formula_.never()) continue;
    solver_.addClause({-formula_.startsAt(node), entered});
  }
  for (ArcIndex arc = 0; arc < network_.arcs.size(); ++arc) addArc(arc, phase);
  for (NodeIndex left = 0; left < network_.nodes.size(); ++left) {
    for (const PlanFormula::Order& order : formula_.ordersOf(left)) follow(left, order, phase);
    bringIn(left, phase);
  }
}

void Timeline::addArc(ArcIndex index, std::uint32_t phase) {
  const PlanNetwork::Arc& arc = network_.arcs[index];
  const Literal used = formula_.isUsed(index);
  const Literal entered = entered_[arc.to][phase];
  const bool isGap = phase % 2 == 0;
  if (isUnchanged(arc.to, phase) || solver_.isNever(used)) return;
  if (isGap && arc.hop == PlannedHop::Ordinary) {
    const Literal before = phase == 0 ? formula_.never() : entered_[arc.to][phase - 1];
    solver_.addClause({-used, -entered, before});
  }
  if (network_.nodes[arc.from].in.empty()) return;
  // A layer is one step; several can be in a gap.
  const Literal isReady = entered_[arc.from][isGap ? phase : phase - 1];
  solver_.addClause({-used, -entered, isReady});
}

/// What is brought in because of a node has not been entered before that node.
void Timeline::bringIn(NodeIndex needing, std::uint32_t phase) {
  for (const PlanFormula::Order& order : formula_.broughtInWith(needing)) {
    if (isUnchanged(needing, phase) && isUnchanged(order.entered, phase)) continue;
    solver_.addClause({-order.literal, -entered_[order.entered][phase], entered_[needing][phase]});
  }
}

void Timeline::follow(NodeIndex left, const PlanFormula::Order& order, std::uint32_t phase) {
  if (network_.nodes[order.entered].in.empty() || solver_.isNever(order.literal)) return;
  for (const ArcIndex arc : network_.nodes[left].out) {
    const NodeIndex next = network_.arcs[arc].to;
    if (isUnchanged(next, phase) && isUnchanged(order.entered, phase)) continue;
    const Literal isLeft = entered_[next][phase];
    solver_.addClause({-order.literal, -formula_.isUsed(arc), -entered_[order.entered][phase],
                       formula_.startsAt(order.entered), isLeft});
  }
}

}  // namespace tarn::evolution::pathfinder
