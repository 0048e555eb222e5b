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
#include "pathfinder/search/step_weight.hpp"

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
    std::fprintf(stderr, "  %s %.4f s: E %lu H %lu R %lu S %zu circles %lu questions %lu vars %d\n",
                 what, now() - start_, expensive_, hops_, best_, steps_.size(), check_.circles(),
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
    const std::uint64_t least = setCosts(
        fewestExpensive_, [this](const auto& arc) { return extraExpensive(arc); },
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

  void notePlan() { best_ = std::min(best_, check_.ordinaryHops() + check_.ordinarySteps()); }

  void findFewestOrdinaryHops() {
    leastOrdinary_ = setCosts(
        fewestOrdinary_, [this](const auto& arc) { return extraOrdinary(arc); },
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

/// The most of some literals that can be true together under some assumptions; makes sure that so
/// many are, if `isMost` is. None of them need be possible.
class Maximum {
 public:
  Maximum(SatSolver& solver, std::vector<Literal> assumptions)
      : solver_(solver), assumptions_(std::move(assumptions)) {}

  /// The solver holds a model of the assumptions, and does again afterwards.
  std::uint64_t find(const std::vector<Literal>& literals, const std::function<bool()>& accept,
                     Literal isMost) {
    std::vector<Literal> possible;
    std::vector<Literal> open;
    do {
      if (solver_.solve(assumptions_) != SatSolver::Answer::Satisfiable) std::abort();
    } while (!accept());
    for (const Literal literal : literals) {
      (solver_.isTrue(literal) ? possible : open).push_back(literal);
    }
    // Which can be true at all?
    while (!open.empty()) {
      std::erase_if(open, [&](Literal literal) { return solver_.isImplied(-literal); });
      if (open.empty()) break;
      if (solver_.solveWith(open, assumptions_) != SatSolver::Answer::Satisfiable) break;
      if (!accept()) continue;
      std::erase_if(open, [&](Literal literal) {
        if (!solver_.isTrue(literal)) return false;
        possible.push_back(literal);
        return true;
      });
    }
    for (const Literal literal : open) solver_.addClause({-isMost, -literal});
    CoreGuidedMinimum minimum(solver_);
    for (const Literal literal : possible) minimum.want(literal, 1);
    minimum.minimize(assumptions_, accept);
    for (const Literal literal : minimum.stillWanted()) solver_.addClause({-isMost, literal});
    return possible.size() - minimum.lowerBound();
  }

 private:
  SatSolver& solver_;
  std::vector<Literal> assumptions_;
};

BackwardPlan LearningPlan::breakTies() {
  BackwardPlan plan(network_.names.size(), ground_.space.sources.size());
  const Steps& chosen = steps_.front();
  LastSteps last(network_, formula_, solver_);
  const Literal decided = solver_.newVariable();
  solver_.addClause({-decided, isFewestExpensive_});
  solver_.addClause({-decided, chosen.isLeast});
  std::uint32_t layers = chosen.layers;
  std::uint64_t expensiveLeft = expensive_;
  std::uint64_t ordinaryLeft = chosen.hops;
  timeline_.extendTo(layers);
  while (expensiveLeft + ordinaryLeft > 0) {
    last.add();
    const std::uint32_t step = last.count();
    std::vector<Literal> made[2];
    for (ArcIndex arc = 0; arc < network_.arcs.size(); ++arc) {
      if (!last.mayBeIn(arc, step)) continue;
      made[network_.arcs[arc].expensive ? 1 : 0].push_back(last.isMadeIn(arc, step));
    }
    // the rest has as many layers less as there is an ordinary hop in this step
    std::uint64_t counts[2] = {0, 0};
    const Literal shorter = layers > 0 ? last.isRestWithin(timeline_, layers - 1) : 0;
    const Literal same = last.isRestWithin(timeline_, layers);
    const Literal hasOrdinary = solver_.newVariable();
    std::vector<Literal> any{-hasOrdinary};
    for (const Literal literal : made[0]) any.push_back(literal);
    solver_.addClause(any);
    // no ordinary hop unless said
    for (ArcIndex arc = 0; arc < network_.arcs.size(); ++arc) {
      if (!last.mayBeIn(arc, step) || network_.arcs[arc].expensive) continue;
      const NodeIndex to = network_.arcs[arc].to;
      solver_.addClause({hasOrdinary, -formula_.isUsed(arc), -last.isEnteredBefore(to, step - 1),
                         last.isEnteredBefore(to, step)});
    }
    if (shorter == 0) solver_.addClause({-decided, -hasOrdinary});
    const Literal active = solver_.newVariable();
    solver_.addClause({-active, hasOrdinary, same});
    if (shorter != 0) solver_.addClause({-active, -hasOrdinary, shorter});
    const std::vector<Literal> assumptions{decided, active};
    for (int kind : {1, 0}) {
      const bool isExp = kind == 1;
      if ((isExp ? expensiveLeft : ordinaryLeft) == 0) continue;
      counts[kind] = Maximum(solver_, assumptions).find(made[kind], accept(), decided);
    }
    expensiveLeft -= counts[1];
    ordinaryLeft -= counts[0];
    if (counts[0] > 0) --layers;
    solver_.addClause({-decided, counts[0] > 0 ? hasOrdinary : -hasOrdinary});
    if (std::getenv("LEARN_LOG"))
      std::fprintf(stderr, "   step %u: %lu exp %lu ord  %.4f questions %lu cand %zu %zu\n", step,
                   counts[1], counts[0], now() - start_, solver_.questions(), made[1].size(),
                   made[0].size());
    if (counts[0] + counts[1] == 0) std::abort();
  }
  // places
  const std::uint32_t steps = last.count();
  for (NodeIndex node = 0; steps > 0 && node < network_.nodes.size(); ++node)
    solver_.addClause({-decided, -last.isEnteredBefore(node, steps), formula_.startsAt(node)});
  const std::vector<Literal> assumptions{decided};
  const auto solve = [&] {
    do {
      if (solver_.solve(assumptions) != SatSolver::Answer::Satisfiable) std::abort();
    } while (!check_.accept());
  };
  solve();
  for (std::size_t i = 0; i < network_.sources.size(); ++i) {
    std::vector<Literal> a{decided, formula_.isSource(i)};
    bool ok = false;
    while (solver_.solve(a) == SatSolver::Answer::Satisfiable)
      if (check_.accept()) {
        ok = true;
        break;
      }
    if (ok) {
      solver_.addClause({-decided, formula_.isSource(i)});
      break;
    }
  }
  solve();
  std::vector<NodeIndex> held(network_.names.size());
  for (NameIndex n = 0; n < held.size(); ++n) held[n] = check_.nodesOf(n).front();
  std::uint64_t asked = 0;
  for (std::uint32_t step = steps; step > 0; --step) {
    // what each name does in the model
    const auto digitOf = [&](NameIndex name) -> ArcIndex {
      const auto& nodes = check_.nodesOf(name);
      const auto& arcs = check_.arcsOf(name);
      for (std::size_t i = 0; i < arcs.size(); ++i)
        if (nodes[i] == held[name]) {
          return solver_.isTrue(last.isEnteredBefore(nodes[i + 1], step - 1)) ? arcs[i]
                                                                              : SearchSpace::none;
        }
      return SearchSpace::none;
    };
    const auto placeOf = [&](ArcIndex a) {
      return a == SearchSpace::none ? 0u : network_.arcs[a].place + 1;
    };
    std::vector<ArcIndex> digits(held.size());
    const auto read = [&](std::size_t below) {
      for (NameIndex n = 0; n < below; ++n) digits[n] = digitOf(n);
    };
    read(held.size());
    // lower digit literal
    const auto lower = [&](NameIndex name, std::uint32_t place) {  // true only if digit < place
      const Literal l = solver_.newVariable();
      for (const ArcIndex arc : network_.nodes[held[name]].out)
        if (network_.arcs[arc].place + 1 >= place)
          solver_.addClause(
              {-l, -formula_.isUsed(arc), -last.isEnteredBefore(network_.arcs[arc].to, step - 1)});
      return l;
    };
    std::size_t fixed = held.size();  // names from here on are decided
    const auto fix = [&](NameIndex name) {
      const std::uint32_t place = placeOf(digits[name]);
      for (const ArcIndex arc : network_.nodes[held[name]].out) {
        if (network_.arcs[arc].place + 1 == place) {
          solver_.addClause({-decided, formula_.isUsed(arc)});
          solver_.addClause({-decided, last.isEnteredBefore(network_.arcs[arc].to, step - 1)});
        } else
          solver_.addClause({-decided, -formula_.isUsed(arc),
                             -last.isEnteredBefore(network_.arcs[arc].to, step - 1)});
      }
    };
    while (fixed > 0) {
      // names below `fixed` with a digit: can the topmost be lowered? ask for groups
      std::vector<NameIndex> group;
      std::vector<Literal> lowers;
      for (std::size_t n = fixed; n-- > 0;)
        if (digits[n] != SearchSpace::none) group.push_back(static_cast<NameIndex>(n));
      for (NameIndex n : group) lowers.push_back(lower(n, placeOf(digits[n])));
      // find the longest prefix of the group that cannot be lowered
      // keep zeros above: digits of names between are assumed by clauses as we fix
      std::size_t done = 0;
      bool changed = false;
      std::size_t size = group.size();
      std::size_t position = fixed;
      while (done < group.size()) {
        size = std::min(size, group.size() - done);
        // names above and including group[done..done+size) that are 0 must stay 0: assume
        std::vector<Literal> a{decided};
        const std::size_t down = done + size < group.size() ? group[done + size] + 1 : 0;
        std::vector<Literal> clause(lowers.begin() + static_cast<std::ptrdiff_t>(done),
                                    lowers.begin() + static_cast<std::ptrdiff_t>(done + size));
        (void)down;
        if (size == 1) {
          // zeros above group[done] are fixed
          for (std::size_t n = position; n-- > group[done] + 1u;) fix(static_cast<NameIndex>(n));
          position = group[done] + 1;
          a.push_back(lowers[done]);
          ++asked;
          SatSolver::Answer r;
          while ((r = solver_.solve(a)) == SatSolver::Answer::Satisfiable && !check_.accept()) {
          }
          if (r == SatSolver::Answer::Satisfiable) {
            read(position);
            changed = true;
            break;
          }
          fix(group[done]);
          position = group[done];
          ++done;
          size = std::max<std::size_t>(1, size * 2);
          continue;
        }
        ++asked;
        const auto r = solver_.solveWith(clause, a);
        if (r == SatSolver::Answer::Unsatisfiable) {
          for (std::size_t n = position; n-- > group[done + size - 1];)
            fix(static_cast<NameIndex>(n));
          position = group[done + size - 1];
          done += size;
          size *= 2;
        } else {
          size /= 2;
        }
      }
      if (!changed) {
        for (std::size_t n = position; n-- > 0;) fix(static_cast<NameIndex>(n));
        position = 0;
        solve();
        read(held.size());
      }
      fixed = position;
      if (changed) continue;
    }
    for (NameIndex n = 0; n < held.size(); ++n)
      if (digits[n] != SearchSpace::none) held[n] = network_.arcs[digits[n]].to;
  }
  if (std::getenv("LEARN_LOG")) std::fprintf(stderr, "   places asked %lu\n", asked);
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
