#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "pathfinder/learning/plan_solver.hpp"

namespace tarn::evolution::pathfinder {

/// The most of some literals that can be true together in a plan under some assumptions, of which
/// there is one.
class MostTrue {
 public:
  MostTrue(PlanSolver& plans, std::vector<Literal> assumptions)
      : plans_(plans), assumptions_(std::move(assumptions)) {}

  /// How many that is. `isDecided` from now on implies that so many are true.
  std::uint64_t decide(const std::vector<Literal>& literals, Literal isDecided);

 private:
  std::vector<Literal> takePossible(std::vector<Literal>& open);

  PlanSolver& plans_;
  std::vector<Literal> assumptions_;
};

}  // namespace tarn::evolution::pathfinder
