#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "pathfinder/search_space.hpp"
#include "pathfinder/step_formation.hpp"

namespace tarn::evolution::pathfinder {

/// The best ways, over selections of versions, from the sources to a target: the least total
/// weight, the step weights that come first among those of that total, and every step that lies on
/// such a way.
///
/// Plans leave out which linked metamodel of a version is meant, so not every plan can be carried
/// out; but every path has its plan, and where there is no plan there is no path.
class BackwardPlan {
 public:
  struct Step {
    std::vector<std::uint64_t> hops;  ///< the weight of each name's hop; 0 for none
    const VersionSelection* after;

    auto operator<=>(const Step&) const = default;
  };

  /// What is planned from a selection on.
  struct Continuation {
    PlanCost cost;         ///< of the steps that follow
    std::set<Step> steps;  ///< the next step
  };

  /// No value when there is no plan, and so no path.
  static std::optional<BackwardPlan> make(const StepFormation::Ground& ground,
                                          const std::vector<VersionSelection>& sources,
                                          const std::vector<VersionSelection>& targets);

  /// The step weights of the best plans, the last step first.
  const WeightSequence& weights() const { return weights_; }

  /// What is planned from a selection on; null when nothing is.
  const Continuation* from(const VersionSelection& selection) const;

 private:
  friend class PlanSearch;

  std::map<VersionSelection, Continuation> continuations_;
  WeightSequence weights_;
};

}  // namespace tarn::evolution::pathfinder
