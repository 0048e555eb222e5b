// Included into every source that scripts/mutate.py has built. All mutants are compiled at once;
// the environment says which of them a process runs.
#pragma once

#include <concepts>
#include <cstdlib>
#include <functional>

namespace mutation {

inline const int active = [] {
  const char* number = std::getenv("TARN_MUTANT");
  return number == nullptr ? 0 : std::atoi(number);
}();

/// `a <op> b` and `a == op == b`, with an Operator between, have the precedence of what they stand
/// for.
template <int mutant, class Original, class Wrong>
struct Operator {};

template <class Left, class Operator>
struct Operation {
  const Left& left;
};

template <int mutant, class Original, class Wrong, class Left, class Right>
auto apply(Operation<Left, Operator<mutant, Original, Wrong>> operation, const Right& right) {
  using Result = std::invoke_result_t<Original, const Left&, const Right&>;
  if (active == mutant) return static_cast<Result>(Wrong()(operation.left, right));
  return Original()(operation.left, right);
}

#define TARN_MUTATION_OPERATOR(first, second)                                     \
  template <class Left, int mutant, class Original, class Wrong>                  \
  Operation<Left, Operator<mutant, Original, Wrong>> operator first(              \
      const Left& left, Operator<mutant, Original, Wrong>) {                      \
    return {left};                                                                \
  }                                                                               \
  template <class Left, class Operator, class Right>                              \
  auto operator second(Operation<Left, Operator> operation, const Right& right) { \
    return apply(operation, right);                                               \
  }
TARN_MUTATION_OPERATOR(<, >)
TARN_MUTATION_OPERATOR(==, ==)
TARN_MUTATION_OPERATOR(+, +)
#undef TARN_MUTATION_OPERATOR

template <int mutant, bool isGreatest, class Value>
Value extreme(const Value& left, const Value& right) {
  return isGreatest != (active == mutant) ? (left < right ? right : left)
                                          : (right < left ? right : left);
}

}  // namespace mutation
