#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "pathfinder/learning/link_choices.hpp"
#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/second_planner.hpp"
#include "pathfinder/planning/step_problem.hpp"

namespace tarn::evolution::pathfinder {

/// Plans by learning from refutations: finds the very plan that comes first among all, or proves
/// that there is none. What it has learnt serves the plans that are asked for later.
class LearningPlanner {
 public:
  /// Thrown where hops form cycles and it is not known how often the best plans go through them.
  struct Undecided {};

  /// Null when the question is of a kind that has to be planned otherwise: when a source is not
  /// regular, when a version links another one of its own name, or when names can be brought in and
  /// only some of a version's linked metamodels do so.
  static std::unique_ptr<LearningPlanner> create(const PlanningGround& ground,
                                                 const std::vector<VersionSelection>& targets);

  /// The same for a space without variants: `links` tells what brings names in. Plans begin at the
  /// sources of the space or, if it is not null, at an open start.
  static std::unique_ptr<LearningPlanner> create(const PlanningGround& ground,
                                                 const std::vector<VersionSelection>& targets,
                                                 const LinkChoices& links, const OpenStart* start);

  LearningPlanner(const LearningPlanner&) = delete;
  LearningPlanner& operator=(const LearningPlanner&) = delete;
  virtual ~LearningPlanner() = default;

  /// From now on, each plan that is met on the way and weighs less than those that could be carried
  /// out is told; nothing if `met` is empty.
  virtual void tellPlans(PlanMet met) = 0;

  /// The plan that comes first among those that are not forbidden, and none beside it; no value
  /// when there is none. Throws SearchStopped when a limit of the search is reached, and Undecided.
  virtual std::optional<BackwardPlan> plan() = 0;

  /// What it costs to end with a version; those that are not listed cost nothing.
  struct EndCost {
    VersionIndex end;
    std::uint64_t cost;
  };

  /// Keeps of all plans only those whose ends cost the least together; false when there is none.
  virtual bool keepCheapestEnds(std::span<const EndCost> costs) = 0;

  /// The version that all plans which are left end with, by name; `none` where they differ. There
  /// must be a plan.
  virtual VersionSelection commonEnds() = 0;

  /// Forbids that versions, each of another name, are held together; or that a plan ends with them.
  /// Throws Undecided.
  virtual void forbidTogether(std::span<const VersionIndex> versions) = 0;
  virtual void forbidAtEnd(std::span<const VersionIndex> versions) = 0;

 protected:
  LearningPlanner() = default;
};

}  // namespace tarn::evolution::pathfinder
