// An order encoding: one literal for each node and phase, "entered by then", monotone in the phase
// and false before the first one in which bounds allow the node.
// An order between nodes carries over to the phases in which they are left and entered, and a hop
// comes in a later phase than the one before of its name, or in the same gap. So does what links
// bring in, which may happen in any phase.
//
// A node that no hop leads to which can be made in a gap has the same literal in a gap as in the
// layer before, and clauses about literals that stay are not repeated. One that no hop leads to at
// all has no literal but "held"; what would have that for a consequence follows anyway.
//
// Where no plan has more than so many layers, a node from which a way takes k more ordinary hops is
// entered before the k last ones, so there it has no literal but "held" either.
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
    entered_[node].push_back(makeEntered(node, phase));
    if (phase > 0 && !isUnchanged(node, phase)) {
      solver_.addClause({-entered_[node][phase - 1], entered_[node][phase]});
    }
  }
  for (ArcIndex arc = 0; arc < network_.arcs.size(); ++arc) addArc(arc, phase);
  for (NodeIndex left = 0; left < network_.nodes.size(); ++left) {
    for (const PlanFormula::Order& order : formula_.ordersOf(left)) follow(left, order, phase);
    bringIn(left, phase);
  }
}

/// The literal that a node is entered by the end of a phase, which may have been made before.
Literal Timeline::makeEntered(NodeIndex index, std::uint32_t phase) {
  const PlanNetwork::Node& node = network_.nodes[index];
  if (node.in.empty()) return formula_.isHeld(index);
  if (solver_.isNever(formula_.isHeld(index))) return formula_.never();
  if (phase + 1 < 2 * node.ordinaryStepsBefore) return formula_.never();
  // Unless it may be so in the gap after a layer, a node is entered when the layer is over.
  const std::uint32_t layersOver = mayBeEnteredInGap_[index] ? phase / 2 : (phase + 1) / 2;
  if (layersOver + node.ordinaryLeft >= mostLayers_) return formula_.isHeld(index);
  const bool mayChange = phase == 0 || phase % 2 == 1 || mayBeEnteredInGap_[index];
  if (!mayChange) return entered_[index].back();
  const Literal entered = solver_.newVariable();
  if (formula_.startsAt(index) != formula_.never()) {
    solver_.addClause({-formula_.startsAt(index), entered});
  }
  return entered;
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
  // A layer is one step; several can be in a gap.
  const std::uint32_t ready = isGap ? phase : phase - 1;
  if (isSurelyEntered(arc.from, ready)) return;
  solver_.addClause({-used, -entered, entered_[arc.from][ready]});
}

/// What is brought in because of a node has not been entered before that node.
void Timeline::bringIn(NodeIndex needing, std::uint32_t phase) {
  for (const PlanFormula::Order& order : formula_.broughtInWith(needing)) {
    if (isUnchanged(needing, phase) && isUnchanged(order.entered, phase)) continue;
    if (isSurelyEntered(needing, phase)) continue;
    solver_.addClause({-order.literal, -entered_[order.entered][phase], entered_[needing][phase]});
  }
}

void Timeline::follow(NodeIndex left, const PlanFormula::Order& order, std::uint32_t phase) {
  if (network_.nodes[order.entered].in.empty() || solver_.isNever(order.literal)) return;
  for (const ArcIndex arc : network_.nodes[left].out) {
    const NodeIndex next = network_.arcs[arc].to;
    if (isUnchanged(next, phase) && isUnchanged(order.entered, phase)) continue;
    if (isSurelyEntered(next, phase)) continue;
    const Literal isLeft = entered_[next][phase];
    solver_.addClause({-order.literal, -formula_.isUsed(arc), -entered_[order.entered][phase],
                       formula_.startsAt(order.entered), isLeft});
  }
}

}  // namespace tarn::evolution::pathfinder
