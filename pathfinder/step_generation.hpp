#pragma once

#include <cstdint>
#include <vector>

#include "pathfinder/hop_collection.hpp"
#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {

/// The steps that leave one baseline in a direction: `VersionRepository::getStepsFrom` in two
/// halves, so that a search can look at the number of combinations before it tries them.
class StepGeneration {
 public:
  /// Asks for the hops.
  StepGeneration(VersionRepository& repository, const VersionBaseline& from,
                 VersionRepository::Direction direction);

  /// In how many ways each metamodel can take one of its hops or none; wraps at 64 bits.
  std::uint64_t permutationCount() const { return choices_.permutationCount; }

  /// How many combinations there are to try; the largest number when there are more.
  std::uint64_t combinationCount() const;

  /// Tries every combination. Room for as many steps as there are permutations is reserved first.
  std::vector<BaselineHop> run();

 private:
  void attempt(const LockstepHop& combination);

  VersionRepository& repository_;
  const VersionBaseline& from_;
  HopChoices choices_;
  std::vector<BaselineHop> steps_;
};

/// Writes the records of a combination that is about to be tried, and of what it led to.
void traceAttempt(const LockstepHop& combination);
void traceCandidates(const std::vector<VersionBaseline>& candidates);

}  // namespace tarn::evolution::pathfinder
