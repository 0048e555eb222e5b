#pragma once

#include <cstdint>
#include <vector>

#include "pathfinder/learning/timeline.hpp"

namespace tarn::evolution::pathfinder {

/// The last steps of plans, one by one, after a timeline in which all else happens. Steps count
/// from the end: 1 is the last one.
class LastSteps {
 public:
  LastSteps(const PlanNetwork& network, const PlanFormula& formula, SatSolver& solver);

  /// Adds a step before those that are there.
  void add();

  std::uint32_t count() const { return static_cast<std::uint32_t>(before_.size() - 1); }

  /// Whether a node is entered before a step, or is where its name starts. Before step 0: at all.
  Literal isEnteredBefore(NodeIndex node, std::uint32_t step) const { return before_[step][node]; }

  /// Whether a hop may be made in a step, as far as that takes no search to tell.
  bool mayBeIn(ArcIndex arc, std::uint32_t step) const {
    const NodeIndex entered = network_.arcs[arc].to;
    return network_.nodes[entered].hopsLeft < step && !solver_.isNever(formula_.isUsed(arc)) &&
           !solver_.isNever(before_[step - 1][entered]);
  }

  /// A new literal that is true only if the hop is made in that step.
  Literal isMadeIn(ArcIndex arc, std::uint32_t step);

  /// A new literal that is true only if all before the first of these steps happens in so many
  /// layers and the gaps around them.
  Literal isRestWithin(const Timeline& timeline, std::uint32_t layers);

 private:
  /// Whether a node that is held is entered before a step, in any plan.
  bool isSurelyBefore(NodeIndex node, std::uint32_t step) const {
    return network_.nodes[node].hopsLeft >= step || network_.nodes[node].in.empty();
  }

  const PlanNetwork& network_;
  const PlanFormula& formula_;
  SatSolver& solver_;
  std::vector<std::vector<Literal>> before_;  // by step and node
};

}  // namespace tarn::evolution::pathfinder
