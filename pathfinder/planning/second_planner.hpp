#pragma once

#include <functional>
#include <optional>

#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/step_problem.hpp"
#include "pathfinder/search/search_question.hpp"

namespace tarn::evolution::pathfinder {

/// Told of plans that are met before the best one is known. Whether that one can be carried out.
using PlanMet = std::function<bool(const BackwardPlan&)>;

/// Plans where planning backward has spent its budget, and where what it planned cannot be carried
/// out. Its answers are those that planning backward would come to.
class SecondPlanner {
 public:
  struct Answer {
    bool isPlanned = false;                           ///< otherwise the question is not for it
    std::optional<BackwardPlan> plan = std::nullopt;  ///< planned without one: there is none
  };

  /// The plan that comes first from any source of the space to any of its targets. `met`, unless it
  /// is empty, is told each that is met on the way and weighs less than those it has carried out.
  virtual Answer plan(const PlanningGround& ground, const PlanMet& met) const = 0;

  /// Plans and carries out until a plan can be carried out. No value when the question is not for
  /// it.
  virtual std::optional<SearchAnswer> search(const SearchQuestion& question,
                                             const PlanningGround& ground) const = 0;

 protected:
  ~SecondPlanner() = default;
};

}  // namespace tarn::evolution::pathfinder
