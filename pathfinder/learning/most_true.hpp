#pragma once

#include <cstdint>
#include <unordered_set>
#include <utility>
#include <vector>

#include "pathfinder/learning/plan_solver.hpp"

namespace tarn::evolution::pathfinder {

/// The most of some literals that can be true together in a plan under some assumptions, of which
/// there is one; of several lists of literals, one after the other, what was decided of those
/// before being kept.
class MostTrue {
 public:
  /// `literals`: those of all lists.
  MostTrue(PlanSolver& plans, std::vector<Literal> assumptions, std::vector<Literal> literals)
      : plans_(plans), assumptions_(std::move(assumptions)), literals_(std::move(literals)) {}

  /// How many of the next list that is. `isDecided`, which is one of the assumptions, from now on
  /// implies that so many are true.
  std::uint64_t decide(const std::vector<Literal>& literals, Literal isDecided);

 private:
  std::vector<Literal> takePossible(std::vector<Literal>& open);
  void readPlan();
  bool isAtHand(Literal literal) const { return atHand_.contains(literal); }

  PlanSolver& plans_;
  const std::vector<Literal> assumptions_;
  const std::vector<Literal> literals_;
  bool isAnyAtHand_ = false;
  std::unordered_set<Literal> atHand_;  // true in the plan at hand
};

}  // namespace tarn::evolution::pathfinder
