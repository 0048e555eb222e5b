// Core-guided minimization, the OLL algorithm (Andres, Kaufmann, Matheis, Schaub 2012): assume that
// everything wanted is true; each refutation names some literals that cannot all be, a core. The
// least of their costs is certain to be paid, and raises the lower bound; what may be paid beyond
// that is counted by a totalizer over the core, whose second output is wanted false in turn, then
// its third. When nothing is refuted any more, the bound is the cost.
//
// Invariant: a model's cost is the lower bound and the costs of what is still wanted and false in
// it.

#include "pathfinder/learning/core_guided_minimum.hpp"

#include <algorithm>
#include <iterator>

namespace tarn::evolution::pathfinder {

namespace {

/// The effort spent on making one core smaller.
constexpr std::size_t largestCoreToMinimize = 40;
constexpr int conflictsToMinimize = 500;
constexpr int roundsOfTrimming = 2;

void merge(SatSolver& solver, const std::vector<Literal>& left, const std::vector<Literal>& right,
           const std::vector<Literal>& sum) {
  for (std::size_t i = 0; i <= left.size(); ++i) {
    for (std::size_t j = 0; j <= right.size(); ++j) {
      if (i + j == 0) continue;
      std::vector<Literal> clause{sum[i + j - 1]};
      if (i > 0) clause.push_back(-left[i - 1]);
      if (j > 0) clause.push_back(-right[j - 1]);
      solver.addClause(clause);
    }
  }
}

/// Literals of which the i-th is true if more than i of the inputs are: a totalizer.
std::vector<Literal> countTrue(SatSolver& solver, const std::vector<Literal>& inputs) {
  if (inputs.size() <= 1) return inputs;
  const auto middle = inputs.begin() + static_cast<std::ptrdiff_t>(inputs.size() / 2);
  const std::vector<Literal> left = countTrue(solver, {inputs.begin(), middle});
  const std::vector<Literal> right = countTrue(solver, {middle, inputs.end()});
  std::vector<Literal> sum(inputs.size());
  for (Literal& output : sum) output = solver.newVariable();
  merge(solver, left, right, sum);
  return sum;
}

}  // namespace

CoreGuidedMinimum::Outcome CoreGuidedMinimum::minimize(const std::vector<Literal>& assumptions,
                                                       const AcceptModel& accept,
                                                       std::uint64_t limit,
                                                       const BoundProven& noteBound) {
  while (lowerBound_ < limit) {
    if (noteBound) noteBound(lowerBound_);
    std::vector<Literal> assumed = assumptions;
    for (const auto& [literal, cost] : costs_) assumed.push_back(literal);
    if (solver_.solve(assumed)) {
      if (accept()) return Outcome::Found;
      continue;
    }
    Core core = coreOfLastQuestion(stillWanted(), assumptions);
    trim(core);
    minimize(core);
    if (core.wanted.empty()) return Outcome::Impossible;
    relax(core);
  }
  return Outcome::TooDear;
}

void CoreGuidedMinimum::dropDearerThan(std::uint64_t beyondLowerBound) {
  for (const auto& [literal, cost] : costs_) {
    if (cost > beyondLowerBound) solver_.addClause({literal});
  }
}

std::vector<Literal> CoreGuidedMinimum::stillWanted() const {
  std::vector<Literal> result;
  for (const auto& [literal, cost] : costs_) result.push_back(literal);
  return result;
}

/// What the refutation of the last question needed.
CoreGuidedMinimum::Core CoreGuidedMinimum::coreOfLastQuestion(
    const std::vector<Literal>& wanted, const std::vector<Literal>& assumptions) const {
  Core core;
  const auto hasFailed = [this](Literal literal) { return solver_.hasFailed(literal); };
  std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(core.wanted), hasFailed);
  std::copy_if(assumptions.begin(), assumptions.end(), std::back_inserter(core.assumptions),
               hasFailed);
  return core;
}

/// Whether a short search shows that the core is one without the literal at that place as well.
bool CoreGuidedMinimum::isRefuted(const Core& core, std::size_t without) {
  std::vector<Literal> assumed = core.assumptions;
  for (std::size_t i = 0; i < core.wanted.size(); ++i) {
    if (i != without) assumed.push_back(core.wanted[i]);
  }
  return solver_.refutes(assumed, conflictsToMinimize);
}

/// Asks with the core alone: often less is to blame.
void CoreGuidedMinimum::trim(Core& core) {
  for (int round = 0; round < roundsOfTrimming && core.wanted.size() > 1; ++round) {
    std::vector<Literal> assumed = core.assumptions;
    assumed.insert(assumed.end(), core.wanted.begin(), core.wanted.end());
    if (solver_.solve(assumed)) return;
    const std::size_t before = core.wanted.size();
    core = coreOfLastQuestion(core.wanted, core.assumptions);
    if (core.wanted.size() == before) return;
  }
}

/// Leaves out one literal after the other without which a short search still refutes the rest.
void CoreGuidedMinimum::minimize(Core& core) {
  if (core.wanted.size() > largestCoreToMinimize) return;
  for (std::size_t i = 0; i < core.wanted.size() && core.wanted.size() > 1;) {
    if (!isRefuted(core, i)) {
      ++i;
      continue;
    }
    core.wanted.erase(core.wanted.begin() + static_cast<std::ptrdiff_t>(i));
    core = coreOfLastQuestion(core.wanted, core.assumptions);
    i = 0;
  }
}

void CoreGuidedMinimum::relax(const Core& core) {
  std::uint64_t least = ~std::uint64_t{0};
  for (const Literal literal : core.wanted) least = std::min(least, costs_.at(literal));
  lowerBound_ += least;
  std::vector<Literal> violations;
  for (const Literal literal : core.wanted) {
    violations.push_back(-literal);
    const auto cost = costs_.find(literal);
    cost->second -= least;
    if (cost->second == 0) costs_.erase(cost);
    const auto output = outputOf_.find(literal);
    if (output == outputOf_.end()) continue;
    const auto [counter, place] = output->second;
    if (place + 1 == counters_[counter].size()) continue;
    const Literal next = -counters_[counter][place + 1];
    want(next, least);
    outputOf_.emplace(next, Output{counter, place + 1});
  }
  std::vector<Literal> clause = violations;  // a consequence, for speed
  for (const Literal assumption : core.assumptions) clause.push_back(-assumption);
  solver_.addClause(clause);
  if (violations.size() == 1) return;
  counters_.push_back(countTrue(solver_, violations));
  const Literal second = -counters_.back()[1];
  want(second, least);
  outputOf_.emplace(second, Output{counters_.size() - 1, 1});
}

}  // namespace tarn::evolution::pathfinder
