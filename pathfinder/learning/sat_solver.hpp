#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

namespace tarn::evolution::pathfinder {

/// A variable that is true, or its negation, which is the negative number.
using Literal = int;

/// A formula in conjunctive normal form that only grows, and questions to it under assumptions. What
/// a question learns stays for those that follow.
class SatSolver {
 public:
  enum class Answer { Satisfiable, Unsatisfiable, Unknown };

  static constexpr int noLimit = -1;

  /// `mayGoOn` is called now and then while a question is worked on, which is given up when it
  /// returns false. It must not throw.
  explicit SatSolver(std::function<bool()> mayGoOn = {});
  SatSolver(const SatSolver&) = delete;
  SatSolver& operator=(const SatSolver&) = delete;
  ~SatSolver();

  Literal newVariable();

  void addClause(std::initializer_list<Literal> literals);
  void addClause(std::span<const Literal> literals);

  /// Whether the formula and all assumptions can be true; unknown after so many conflicts.
  Answer solve(std::span<const Literal> assumptions, int conflicts = noLimit);

  /// The same with a clause that holds for this question only.
  Answer solveWith(std::span<const Literal> clause, std::span<const Literal> assumptions);

  /// After a satisfiable question: the value in the model that was found.
  bool isTrue(Literal literal) const;

  /// After an unsatisfiable question: whether the assumption was used to refute it.
  bool hasFailed(Literal assumption) const;

  /// Whether the formula alone implies the literal, as far as that is known without a search.
  bool isImplied(Literal literal) const;

  /// Tries this value first where nothing decides.
  void prefer(Literal literal);

  std::uint64_t questions() const { return questions_; }
  int variables() const { return variables_; }

 private:
  class Backend;

  std::unique_ptr<Backend> backend_;
  int variables_ = 0;
  std::uint64_t questions_ = 0;
};

}  // namespace tarn::evolution::pathfinder
