#include "pathfinder/learning/sat_solver.hpp"

#include <algorithm>
#include <cadical.hpp>
#include <optional>
#include <random>

#include "pathfinder/learning/random_choices.hpp"
#include "pathfinder/limits/search_watch.hpp"

namespace tarn::evolution::pathfinder {

namespace {

// What the solver answers.
constexpr int satisfiable = 10;
constexpr int unsatisfiable = 20;

constexpr std::size_t clausesBetweenLooks = 4096;  // at the limits of the search

}  // namespace

/// The solver, which asks now and then whether to end.
class SatSolver::Backend : public CaDiCaL::Terminator {
 public:
  Backend() {
    solver_.set("quiet", 1);
    // Hundreds of questions are asked about formulas of a hundred thousand variables: what helps a
    // single hard one does not pay for itself.
    solver_.set("chrono", 0);  // chronological backtracking
    solver_.set("lucky", 0);   // assignments that might satisfy all by luck
    if (watch_ != nullptr) solver_.connect_terminator(this);
    if (const auto seed = RandomChoices::seed()) {
      random_.emplace(*seed);
      solver_.set("seed", static_cast<int>(*seed % 1'000'000));
    }
  }

  /// Ends a backend. One that has run out of memory is left as it is: CaDiCaL would release what it
  /// never got.
  static void end(std::unique_ptr<Backend> backend) {
    if (backend->isBroken_) backend.release();  // NOLINT(bugprone-unused-return-value)
  }

  bool terminate() override { return watch_->isOver(); }

  /// Has the solver do something.
  template <class Act>
  auto use(const Act& act) {
    try {
      return act(solver_);
    } catch (...) {
      isBroken_ = true;
      throw;
    }
  }

  void meet(int variable) {
    if (!random_) return;
    use([&](auto& solver) { solver.phase((*random_)() % 2 == 0 ? variable : -variable); });
  }

  void add(std::span<const Literal> clause) {
    if (random_) {
      waiting_.emplace_back(clause.begin(), clause.end());
    } else {
      addAtOnce(clause);
    }
  }

  int solve() {
    if (random_) std::shuffle(waiting_.begin(), waiting_.end(), *random_);
    for (const std::vector<Literal>& clause : waiting_) addAtOnce(clause);
    waiting_.clear();
    return use([](auto& solver) { return solver.solve(); });
  }

 private:
  void addAtOnce(std::span<const Literal> clause) {
    use([&](auto& solver) {
      for (const Literal literal : clause) solver.add(literal);
      solver.add(0);
    });
  }

  CaDiCaL::Solver solver_;
  bool isBroken_ = false;
  SearchWatch* const watch_ = SearchWatch::current();
  std::optional<std::mt19937_64> random_;      // for choices at random ...
  std::vector<std::vector<Literal>> waiting_;  // ... with the clauses since the last question
};

SatSolver::SatSolver() : backend_(std::make_unique<Backend>()) {}

SatSolver::~SatSolver() {
  Backend::end(std::move(backend_));
}

Literal SatSolver::newVariable() {
  backend_->meet(++variables_);
  return variables_;
}

void SatSolver::addClause(std::initializer_list<Literal> literals) {
  addClause(std::span(literals.begin(), literals.size()));
}

void SatSolver::addClause(std::span<const Literal> literals) {
  const auto isKnown = [this](Literal literal) { return isAlways(literal); };
  if (std::any_of(literals.begin(), literals.end(), isKnown)) return;
  backend_->add(literals);
  literals_ += literals.size();
  if (++clauses_ % clausesBetweenLooks == 0) watch();
}

void SatSolver::addExactlyOne(const std::vector<Literal>& literals) {
  addClause(literals);
  addAtMostOne(literals);
}

void SatSolver::addAtMostOne(std::vector<Literal> literals) {
  constexpr std::size_t most = 6;
  while (literals.size() > most) {
    const Literal anyOfLast = newVariable();
    std::vector<Literal> last(literals.end() - (most - 1), literals.end());
    literals.resize(literals.size() - (most - 1));
    for (const Literal literal : last) addClause({-literal, anyOfLast});
    addAtMostOne(std::move(last));
    literals.push_back(anyOfLast);
  }
  for (std::size_t i = 0; i < literals.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) addClause({-literals[i], -literals[j]});
  }
}

void SatSolver::prefer(Literal literal) {
  backend_->use([&](auto& solver) { solver.phase(literal); });
}

bool SatSolver::isAlways(Literal literal) const {
  return backend_->use([&](auto& solver) { return solver.fixed(literal) > 0; });
}

bool SatSolver::solve(std::span<const Literal> assumptions) {
  return ask(assumptions) == satisfiable;
}

bool SatSolver::solveWith(std::span<const Literal> clause, std::span<const Literal> assumptions) {
  backend_->use([&](auto& solver) {
    for (const Literal literal : clause) solver.constrain(literal);
    solver.constrain(0);
  });
  return ask(assumptions) == satisfiable;
}

bool SatSolver::refutes(std::span<const Literal> assumptions, int conflicts) {
  return askBriefly(assumptions, conflicts) == unsatisfiable;
}

bool SatSolver::satisfies(std::span<const Literal> assumptions, int conflicts) {
  return askBriefly(assumptions, conflicts) == satisfiable;
}

int SatSolver::askBriefly(std::span<const Literal> assumptions, int conflicts) {
  backend_->use([&](auto& solver) { solver.limit("conflicts", conflicts); });
  return ask(assumptions);
}

int SatSolver::ask(std::span<const Literal> assumptions) {
  watch();
  backend_->use([&](auto& solver) {
    for (const Literal literal : assumptions) solver.assume(literal);
  });
  const int answer = backend_->solve();
  if (answer != satisfiable && answer != unsatisfiable) checkpoint();
  return answer;
}

void SatSolver::watch() const {
  if (SearchWatch* watch = SearchWatch::current()) watch->noteMemory(bytes());
  checkpoint();
}

bool SatSolver::isTrue(Literal literal) const {
  return backend_->use([&](auto& solver) { return solver.val(literal) > 0; });
}

bool SatSolver::hasFailed(Literal assumption) const {
  return backend_->use([&](auto& solver) { return solver.failed(assumption); });
}

std::size_t SatSolver::bytes() const {
  constexpr std::size_t bytesOfVariable = 200;
  constexpr std::size_t bytesOfLiteral = 24;  // in a clause and the lists that watch it
  constexpr std::size_t bytesOfLearntClause = 250;
  const auto learnt = backend_->use([](auto& solver) { return solver.redundant(); });
  return static_cast<std::size_t>(variables_) * bytesOfVariable + literals_ * bytesOfLiteral +
         static_cast<std::size_t>(learnt) * bytesOfLearntClause;
}

}  // namespace tarn::evolution::pathfinder
