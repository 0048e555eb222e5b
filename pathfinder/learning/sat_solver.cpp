#include "pathfinder/learning/sat_solver.hpp"

#include <cadical.hpp>
#include <utility>

namespace tarn::evolution::pathfinder {

class SatSolver::Backend : public CaDiCaL::Terminator {
 public:
  explicit Backend(std::function<bool()> mayGoOn) : mayGoOn_(std::move(mayGoOn)) {
    solver.set("quiet", 1);
    if (mayGoOn_) solver.connect_terminator(this);
  }

  bool terminate() override { return !mayGoOn_(); }

  CaDiCaL::Solver solver;

 private:
  std::function<bool()> mayGoOn_;
};

SatSolver::SatSolver(std::function<bool()> mayGoOn)
    : backend_(std::make_unique<Backend>(std::move(mayGoOn))) {}

SatSolver::~SatSolver() = default;

Literal SatSolver::newVariable() {
  return ++variables_;
}

void SatSolver::addClause(std::initializer_list<Literal> literals) {
  addClause(std::span(literals.begin(), literals.size()));
}

void SatSolver::addClause(std::span<const Literal> literals) {
  for (const Literal literal : literals) backend_->solver.add(literal);
  backend_->solver.add(0);
}

SatSolver::Answer SatSolver::solve(std::span<const Literal> assumptions, int conflicts) {
  constexpr int satisfiable = 10;
  constexpr int unsatisfiable = 20;
  ++questions_;
  for (const Literal literal : assumptions) backend_->solver.assume(literal);
  if (conflicts != noLimit) backend_->solver.limit("conflicts", conflicts);
  switch (backend_->solver.solve()) {
    case satisfiable:
      return Answer::Satisfiable;
    case unsatisfiable:
      return Answer::Unsatisfiable;
    default:
      return Answer::Unknown;
  }
}

SatSolver::Answer SatSolver::solveWith(std::span<const Literal> clause,
                                       std::span<const Literal> assumptions) {
  for (const Literal literal : clause) backend_->solver.constrain(literal);
  backend_->solver.constrain(0);
  return solve(assumptions);
}

bool SatSolver::isTrue(Literal literal) const {
  return backend_->solver.val(literal) > 0;
}

bool SatSolver::hasFailed(Literal assumption) const {
  return backend_->solver.failed(assumption);
}

bool SatSolver::isImplied(Literal literal) const {
  return backend_->solver.fixed(literal) > 0;
}

void SatSolver::prefer(Literal literal) {
  backend_->solver.phase(literal);
}

}  // namespace tarn::evolution::pathfinder
