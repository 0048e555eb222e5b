#include "pathfinder/learning/learning_plan.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

#include "pathfinder/learning/core_guided_minimum.hpp"
#include "pathfinder/learning/last_steps.hpp"
#include "pathfinder/learning/order_check.hpp"
#include "pathfinder/learning/plan_formula.hpp"
#include "pathfinder/learning/plan_network.hpp"
#include "pathfinder/learning/sat_solver.hpp"
#include "pathfinder/learning/timeline.hpp"
#include "pathfinder/step_weight.hpp"

namespace tarn::evolution::pathfinder {

namespace {

using Outcome = CoreGuidedMinimum::Outcome;

double now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

class LearningPlan {
 public:
  LearningPlan(const PlanningGround& ground, const PlanNetwork& network,
               const std::function<bool()>& mayGoOn)
      : ground_(ground),
        network_(network),
        solver_(mayGoOn),
        formula_(network, solver_),
        check_(network, formula_, solver_),
        timeline_(network, formula_, solver_),
        fewestExpensive_(solver_),
        fewestOrdinary_(solver_) {}

  LearningOutcome run() {
    start_ = now();
    if (!findFewestExpensiveHops()) return {LearningOutcome::Kind::NoPlan};
    log("E");
    findFewestOrdinaryHops();
    log("H");
    findSteps();
    log("S");
    BackwardPlan plan = breakTies();
    log("ties");
    return {LearningOutcome::Kind::Planned, std::move(plan)};
  }

 private:
  void log(const char* what) {
    if (std::getenv("LEARN_LOG") == nullptr) return;
    std::fprintf(stderr, "  %s %.4f s: E %lu H %lu R %lu S %zu circles %lu questions %lu vars %d\n", what,
                 now() - start_, expensive_, hops_, best_, steps_.size(), check_.circles(),
                 solver_.questions(), solver_.variables());
  }

  CoreGuidedMinimum::AcceptModel accept() {
    return [this] { return check_.accept(); };
  }

  /// What an arc adds to the least that its name takes anyway.
  std::uint32_t extraExpensive(const PlanNetwork::Arc& arc) const {
    return (arc.expensive ? 1 : 0) + network_.nodes[arc.to].expensiveLeft -
           network_.nodes[arc.from].expensiveLeft;
  }
  std::uint32_t extraOrdinary(const PlanNetwork::Arc& arc) const {
    return (arc.expensive ? 0 : 1) + network_.nodes[arc.to].ordinaryLeft -
           network_.nodes[arc.from].ordinaryLeft;
  }

  template <class Left>
  std::uint64_t leastFrom(const PlanNetwork::Source& source, const Left& left) const {
    std::uint64_t sum = 0;
    for (const NodeIndex node : source.nodes) sum += left(network_.nodes[node]);
    return sum;
  }

  /// Lets arcs and sources cost what they add; returns what is paid in any case.
  template <class Extra, class Left>
  std::uint64_t setCosts(CoreGuidedMinimum& minimum, const Extra& extra, const Left& left) {
    for (ArcIndex arc = 0; arc < network_.arcs.size(); ++arc) {
      if (const std::uint32_t cost = extra(network_.arcs[arc])) {
        minimum.want(-formula_.isUsed(arc), cost);
      }
    }
    std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
    for (const auto& source : network_.sources) least = std::min(least, leastFrom(source, left));
    for (std::size_t i = 0; i < network_.sources.size(); ++i) {
      const std::uint64_t cost = leastFrom(network_.sources[i], left) - least;
      if (cost > 0) minimum.want(-formula_.isSource(i), cost);
    }
    return least;
  }

  bool findFewestExpensiveHops() {
    const std::uint64_t least =
        setCosts(fewestExpensive_, [this](const auto& arc) { return extraExpensive(arc); },
                 [](const auto& node) { return node.expensiveLeft; });
    if (fewestExpensive_.minimize({}, accept()) != Outcome::Found) return false;
    expensive_ = least + fewestExpensive_.lowerBound();
    notePlan();
    isFewestExpensive_ = allOf(fewestExpensive_.stillWanted());
    return true;
  }

  Literal allOf(const std::vector<Literal>& literals) {
    const Literal result = solver_.newVariable();
    for (const Literal literal : literals) solver_.addClause({-result, literal});
    return result;
  }

  void notePlan() {
    best_ = std::min(best_, check_.ordinaryHops() + check_.ordinarySteps());
  }

  void findFewestOrdinaryHops() {
    leastOrdinary_ =
        setCosts(fewestOrdinary_, [this](const auto& arc) { return extraOrdinary(arc); },
                 [](const auto& node) { return node.ordinaryLeft; });
    fewestOrdinary_.minimize({isFewestExpensive_}, accept());
    hops_ = leastOrdinary_ + fewestOrdinary_.lowerBound();
    notePlan();
  }

  std::uint32_t fewestSteps() const {
    std::uint32_t fewest = std::numeric_limits<std::uint32_t>::max();
    for (const auto& target : network_.targets) {
      std::uint32_t steps = 0;
      for (const auto& ends : target) {
        for (const NodeIndex node : ends) {
          steps = std::max(steps, ground_.bounds[network_.nodes[node].version].ordinarySteps);
        }
      }
      fewest = std::min(fewest, steps);
    }
    return fewest;
  }

  /// A number of layers with which the least weight can be had, and what has to be true for it.
  struct Steps {
    std::uint32_t layers;
    std::uint64_t hops;
    Literal isLeast;
  };

  void findSteps() {
    for (std::uint32_t layers = fewestSteps(); layers + hops_ <= best_; ++layers) {
      timeline_.extendTo(layers);
      const Literal isWithin = solver_.newVariable();
      for (NodeIndex node = 0; node < network_.nodes.size(); ++node) {
        solver_.addClause(
            {-isWithin, -formula_.isHeld(node), timeline_.isEnteredAfter(node, layers)});
      }
      CoreGuidedMinimum minimum = fewestOrdinary_;
      const auto outcome = minimum.minimize({isFewestExpensive_, isWithin}, accept(),
                                            best_ - layers - leastOrdinary_ + 1);
      if (outcome != Outcome::Found) continue;
      const std::uint64_t hops = leastOrdinary_ + minimum.lowerBound();
      if (hops + layers < best_) {
        best_ = hops + layers;
        steps_.clear();
      }
      steps_.push_back({layers, hops, allOf(minimum.stillWanted())});
    }
  }

  BackwardPlan breakTies();

  const PlanningGround& ground_;
  const PlanNetwork& network_;
  SatSolver solver_;
  PlanFormula formula_;
  OrderCheck check_;
  Timeline timeline_;
  CoreGuidedMinimum fewestExpensive_;
  CoreGuidedMinimum fewestOrdinary_;
  Literal isFewestExpensive_ = 0;
  std::uint64_t expensive_ = 0;
  std::uint64_t leastOrdinary_ = 0;
  std::uint64_t hops_ = 0;
  std::uint64_t best_ = std::numeric_limits<std::uint64_t>::max();
  std::vector<Steps> steps_;
  double start_ = 0;
};

BackwardPlan LearningPlan::breakTies() {
  BackwardPlan plan(network_.names.size(), ground_.space.sources.size());
  return plan;
}

}  // namespace

LearningOutcome planByLearning(const PlanningGround& ground,
                               const std::vector<VersionSelection>& targets,
                               const std::function<bool()>& mayGoOn) {
  const auto network = makePlanNetwork(ground, targets);
  if (!network) return {};
  if (network->sources.empty() || network->targets.empty()) {
    return {LearningOutcome::Kind::NoPlan};
  }
  return LearningPlan(ground, *network, mayGoOn).run();
}

}  // namespace tarn::evolution::pathfinder
