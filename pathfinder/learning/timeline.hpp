#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pathfinder/learning/plan_formula.hpp"

namespace tarn::evolution::pathfinder {

/// A clock for the plans of a formula, as far as it counts steps with an ordinary hop: phases 0, 1,
/// 2 and so on. An odd phase, a layer, is one step. An even one is the gap before the next layer:
/// in it there are only expensive hops, in any number of steps, in an order that the formula keeps.
class Timeline {
 public:
  Timeline(const PlanNetwork& network, const PlanFormula& formula, SatSolver& solver)
      : network_(network),
        formula_(formula),
        solver_(solver),
        entered_(network.nodes.size()),
        followed_(network.nodes.size()) {}

  /// Lets plans have so many layers; more can be added. Takes up orders that the formula has got
  /// since.
  void extendTo(std::uint32_t layers);

  /// Whether a node has been entered when a number of layers and the gap after them are over.
  Literal isEnteredAfter(NodeIndex node, std::uint32_t layers) const {
    return entered_[node][std::size_t{2} * layers];
  }

 private:
  void addPhase();
  void addArc(ArcIndex arc, std::uint32_t phase);
  void follow(NodeIndex left, const PlanFormula::Order& order, std::uint32_t phase);

  const PlanNetwork& network_;
  const PlanFormula& formula_;
  SatSolver& solver_;
  std::uint32_t phases_ = 0;

  /// By node and phase: whether it is entered in that phase or before, or is where its name starts.
  std::vector<std::vector<Literal>> entered_;
  std::vector<std::size_t> followed_;  // by node: how many of its orders
};

}  // namespace tarn::evolution::pathfinder
