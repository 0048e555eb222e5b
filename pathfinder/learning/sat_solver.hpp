#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

namespace tarn::evolution::pathfinder {

/// A variable that is true, or its negation, which is the negative number.
using Literal = int;

/// A formula in conjunctive normal form that only grows, and questions to it under assumptions.
/// What a question learns stays for those that follow. Whatever takes time throws SearchStopped
/// when a limit of the search is reached.
class SatSolver {
 public:
  SatSolver();
  SatSolver(const SatSolver&) = delete;
  SatSolver& operator=(const SatSolver&) = delete;
  ~SatSolver();

  Literal newVariable();

  void addClause(std::initializer_list<Literal> literals);
  void addClause(std::span<const Literal> literals);

  /// That no two of these are true: pairs of few, and with more a few at a time and the rest behind
  /// a literal that stands for them.
  void addAtMostOne(std::vector<Literal> literals);
  void addExactlyOne(const std::vector<Literal>& literals);

  /// A hint: models have the literal true where nothing speaks against it.
  void prefer(Literal literal);

  /// Whether a literal is true in every model; false as well where that takes a search to tell.
  bool isAlways(Literal literal) const;
  bool isNever(Literal literal) const { return isAlways(-literal); }

  /// Whether the formula and all assumptions can be true.
  bool solve(std::span<const Literal> assumptions);

  /// The same with a clause that holds for this question only.
  bool solveWith(std::span<const Literal> clause, std::span<const Literal> assumptions);

  /// Whether a search of at most so many conflicts refutes the assumptions; false if it does not
  /// end.
  bool refutes(std::span<const Literal> assumptions, int conflicts);

  /// Whether such a search finds a model under the assumptions; false if it does not end.
  bool satisfies(std::span<const Literal> assumptions, int conflicts);

  /// After a question that was answered with yes, until clauses are added: the value in the model
  /// that was found.
  bool isTrue(Literal literal) const;

  /// After a question that was refuted: whether the assumption was used to refute it.
  bool hasFailed(Literal assumption) const;

  /// A rough measure of the memory that the formula and what was learnt from it take.
  std::size_t bytes() const;

 private:
  class Backend;

  int ask(std::span<const Literal> assumptions);
  int askBriefly(std::span<const Literal> assumptions, int conflicts);
  void watch() const;

  std::unique_ptr<Backend> backend_;
  int variables_ = 0;
  std::size_t clauses_ = 0;
  std::size_t literals_ = 0;  // in all clauses
};

}  // namespace tarn::evolution::pathfinder
