#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "pathfinder/learning/open_start.hpp"
#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/step_problem.hpp"

namespace tarn::evolution::pathfinder {

/// Plans by learning from refutations: finds the very plan that comes first among all, or proves
/// that there is none. What it has learnt serves the plans that are asked for later.
class LearningPlanner {
 public:
  /// No value when the question is of a kind that has to be planned otherwise: when links may bring
  /// names in, when a source is not regular, or when the hops of a name form cycles.
  ///
  /// Plans begin at the sources of the space or, if it is not null, at an open start.
  static std::unique_ptr<LearningPlanner> create(const PlanningGround& ground,
                                                 const std::vector<VersionSelection>& targets,
                                                 const OpenStart* start = nullptr);

  LearningPlanner(const LearningPlanner&) = delete;
  LearningPlanner& operator=(const LearningPlanner&) = delete;
  virtual ~LearningPlanner() = default;

  /// The plan that comes first among those that are not forbidden, and none beside it; no value
  /// when there is none. Throws SearchStopped when a limit of the search is reached.
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
  virtual void forbidTogether(std::span<const VersionIndex> versions) = 0;
  virtual void forbidAtEnd(std::span<const VersionIndex> versions) = 0;

 protected:
  LearningPlanner() = default;
};

}  // namespace tarn::evolution::pathfinder
