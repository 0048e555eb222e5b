#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include "pathfinder/learning/sat_solver.hpp"

namespace tarn::evolution::pathfinder {

/// The least cost of a formula in which literals that are false cost something.
///
/// The lower bound that was proven stays when the formula grows, so a search that is interrupted by
/// new clauses goes on where it was.
class CoreGuidedMinimum {
 public:
  /// Looks at a model that the solver has found. False when it was not good enough, and clauses
  /// were added that exclude it.
  using AcceptModel = std::function<bool()>;

  /// Told each lower bound as soon as it is proven.
  using BoundProven = std::function<void(std::uint64_t lowerBound)>;

  explicit CoreGuidedMinimum(SatSolver& solver) : solver_(solver) {}

  /// That literal costs so much when it is false.
  void want(Literal literal, std::uint64_t cost) { costs_[literal] += cost; }

  enum class Outcome {
    Found,       ///< the solver holds an accepted model of the cost that `lowerBound` tells
    Impossible,  ///< there is no model at all
    TooDear,     ///< the cost would be `limit` or more
  };

  /// Looks for an accepted model of least cost under some assumptions, which are to be the same
  /// each time.
  Outcome minimize(const std::vector<Literal>& assumptions, const AcceptModel& accept,
                   std::uint64_t limit = ~std::uint64_t{0}, const BoundProven& noteBound = {});

  /// From now on leaves only models that cost at most so much more than the lower bound, as far as
  /// single literals tell.
  void dropDearerThan(std::uint64_t beyondLowerBound);

  /// What any accepted model costs at least.
  std::uint64_t lowerBound() const { return lowerBound_; }

  /// What has to be true for a model to cost no more than the lower bound.
  std::vector<Literal> stillWanted() const;

 private:
  /// Where an output of a counter stands: true when at least so many of its inputs are.
  struct Output {
    std::size_t counter;
    std::size_t place;
  };

  /// Wanted literals that cannot all be true, and the assumptions that this takes.
  struct Core {
    std::vector<Literal> wanted;
    std::vector<Literal> assumptions;
  };

  Core coreOfLastQuestion(const std::vector<Literal>& wanted,
                          const std::vector<Literal>& assumptions) const;
  bool isRefuted(const Core& core, std::size_t without);
  void trim(Core& core);
  void minimize(Core& core);
  void relax(const Core& core);

  SatSolver& solver_;
  std::map<Literal, std::uint64_t> costs_;
  std::vector<std::vector<Literal>> counters_;
  std::unordered_map<Literal, Output> outputOf_;  // by the literal that is wanted, its negation
  std::uint64_t lowerBound_ = 0;
};

}  // namespace tarn::evolution::pathfinder
