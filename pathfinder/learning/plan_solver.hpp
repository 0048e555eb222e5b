#pragma once

#include <span>
#include <vector>

#include "pathfinder/learning/order_check.hpp"
#include "pathfinder/learning/plan_formula.hpp"
#include "pathfinder/learning/plan_network.hpp"
#include "pathfinder/learning/sat_solver.hpp"

namespace tarn::evolution::pathfinder {

/// A solver whose models are plans: those of the formula in which no orders contradict one another.
/// What is found to contradict itself is learnt for good.
struct PlanSolver {
  explicit PlanSolver(const PlanNetwork& itsNetwork,
                      PlanFormula::Names names = PlanFormula::Names::All)
      : network(itsNetwork), formula(itsNetwork, sat, names), check(itsNetwork, formula, sat) {}

  /// Whether there is a plan under some assumptions. Then the solver's model is one, and `check`
  /// tells what it is.
  bool findPlan(std::span<const Literal> assumptions) {
    while (sat.solve(assumptions)) {
      if (check.accept()) return true;
    }
    return false;
  }

  /// The same with a clause that holds for this question only.
  bool findPlanWith(std::span<const Literal> clause, std::span<const Literal> assumptions) {
    while (sat.solveWith(clause, assumptions)) {
      if (check.accept()) return true;
    }
    return false;
  }

  /// A literal that is true only if all of these are.
  Literal allOf(std::span<const Literal> literals) {
    const Literal result = sat.newVariable();
    for (const Literal literal : literals) sat.addClause({-result, literal});
    return result;
  }

  const PlanNetwork& network;
  SatSolver sat;
  PlanFormula formula;
  OrderCheck check;
};

}  // namespace tarn::evolution::pathfinder
