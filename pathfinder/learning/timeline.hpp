#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "pathfinder/learning/plan_formula.hpp"

namespace tarn::evolution::pathfinder {

/// A clock for the plans of a formula, as far as it counts steps with an ordinary hop: phases 0, 1,
/// 2 and so on. An odd phase, a layer, is one step. An even one is the gap before the next layer:
/// in it there are only expensive hops, in any number of steps, in an order that the formula keeps.
class Timeline {
 public:
  Timeline(const PlanNetwork& network, const PlanFormula& formula, SatSolver& solver);

  /// That plans have so many layers at most: what has to be done in the last ones is not said any
  /// more of layers that are added from now on.
  void limitTo(std::uint32_t mostLayers) { mostLayers_ = mostLayers; }

  /// Lets plans have so many layers; more can be added. Takes up orders that the formula has got
  /// since.
  void extendTo(std::uint32_t layers);

  /// Whether a node has been entered when a number of layers and the gap after them are over.
  Literal isEnteredAfter(NodeIndex node, std::uint32_t layers) const {
    return entered_[node][std::size_t{2} * layers];
  }

 private:
  /// Whether the node is entered by the end of that phase just if it was by the end of the one
  /// before.
  bool isUnchanged(NodeIndex node, std::uint32_t phase) const {
    return phase > 0 && entered_[node][phase] == entered_[node][phase - 1];
  }

  /// Whether the node has been entered by the end of that phase wherever it is held. What has it
  /// for a consequence need not be said.
  bool isSurelyEntered(NodeIndex node, std::uint32_t phase) const {
    return entered_[node][phase] == formula_.isHeld(node);
  }

  Literal makeEntered(NodeIndex node, std::uint32_t phase);
  void addPhase();
  void addArc(ArcIndex arc, std::uint32_t phase);
  void bringIn(NodeIndex needing, std::uint32_t phase);
  void follow(NodeIndex left, const PlanFormula::Order& order, std::uint32_t phase);

  const PlanNetwork& network_;
  const PlanFormula& formula_;
  SatSolver& solver_;
  std::uint32_t phases_ = 0;
  std::uint32_t mostLayers_ = std::numeric_limits<std::uint32_t>::max();

  /// By node and phase: whether it is entered in that phase or before, or is where its name starts.
  std::vector<std::vector<Literal>> entered_;
  std::vector<std::size_t> followed_;    // by node: how many of its orders
  std::vector<bool> mayBeEnteredInGap_;  // by node: by a hop that need not be in a layer
};

}  // namespace tarn::evolution::pathfinder
