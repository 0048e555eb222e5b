#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "pathfinder/search/search_host.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// No limit on the number of combinations.
inline constexpr std::uint64_t unlimitedBudget = std::numeric_limits<std::uint64_t>::max();

/// The steps that leave one baseline in a direction: `VersionRepository::getStepsFrom` in two
/// halves, so that a search can look at the number of combinations before it tries them.
class StepGeneration {
 public:
  /// Asks for the hops of one metamodel after the other, until there are more combinations than
  /// `budget` admits.
  StepGeneration(SearchHost& host, const VersionBaseline& from, Direction direction,
                 std::uint64_t budget = unlimitedBudget);

  /// How many combinations there are to try, all but that of no hops. Beyond the budget a lower
  /// bound: the other metamodels were not asked. At most the largest number less one.
  std::uint64_t combinationCount() const { return combinations_ - 1; }

  /// Tries every combination. Only for a count within the budget. Throws std::length_error when
  /// there are more than steps in any list.
  std::vector<BaselineHop> run();

  /// The same, but the number of combinations is taken modulo 2^64, and room for as many steps is
  /// reserved first: throws std::length_error when that is beyond any list.
  std::vector<BaselineHop> runReserved();

 private:
  /// The hops that may move one metamodel of the baseline.
  struct Choice {
    std::u16string name;
    std::vector<Hop> hops;
  };

  LockstepHop decode(std::uint64_t combination) const;
  std::vector<BaselineHop> tryAll(std::uint64_t combinations);
  void attempt(const LockstepHop& combination);

  SearchHost& host_;
  const VersionBaseline& from_;
  std::vector<Choice> choices_;     // in the order of names
  std::uint64_t combinations_ = 1;  // of each taking a hop or none, stopping at the largest number
  std::vector<BaselineHop> steps_;
};

/// Writes the records of a combination that is about to be tried, and of what it led to.
void traceAttempt(const LockstepHop& combination);
void traceCandidates(const std::vector<VersionBaseline>& candidates);

}  // namespace tarn::evolution::pathfinder
