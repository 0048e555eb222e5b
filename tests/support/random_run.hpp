#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "support/simpler_notation.hpp"

namespace test {

/// Random numbers.
class Random : public std::mt19937_64 {
 public:
  explicit Random(std::uint64_t seed) : std::mt19937_64(seed) {}

  std::size_t below(std::size_t end) { return (*this)() % end; }
  std::size_t upTo(std::size_t last) { return 1 + below(last); }
  bool chance(unsigned percent) { return below(100) < percent; }

  template <class List>
  auto& oneOf(List& list) {
    return list[below(std::size(list))];
  }
};

/// What a test asks at random.
///
/// A case is a text, from which follows all that is done: it can be printed, made smaller, and
/// asked again. Every run asks other cases and prints its seed. TARN_RANDOM_SEED sets the seed,
/// TARN_RANDOM_CASES the number of cases; TARN_RANDOM_CASE is a text to ask instead of all of them.
class RandomRun {
 public:
  /// Writes a case.
  using Make = std::function<std::string(Random&)>;

  /// Asks a case, by assertions. The numbers are the same each time that a case is asked.
  using Check = std::function<void(const std::string& text, Random& random)>;

  /// Lists texts that are simpler than one, the boldest first.
  using Simplify = std::function<std::vector<std::string>(const std::string& text)>;

  explicit RandomRun(std::size_t usualCases);

  /// Asks case after case until one fails. That one is made simpler, for a minute at most, as long
  /// as what fails begins with the same line, and reported with the command that asks it again.
  void ask(const Make& make, const Check& check, const Simplify& simplify = simplerNotation);

  /// Notes, from within a check, that the case is of a kind.
  void count(const std::string& kind, bool is = true);

  /// Expects at least so many cases of each kind in a hundred. `make` must make them four times as
  /// often, and nothing is said of a kind of which fewer than five are expected: then no seed fails
  /// by chance.
  void expectPercentages(const std::map<std::string, double>& least) const;

  /// How many cases of a kind have been noted.
  std::size_t counted(const std::string& kind) const;

  std::size_t cases() const { return cases_; }
  std::uint64_t seed() const { return seed_; }

  /// Whether the case that is asked is a simpler one than one that failed.
  bool isShrinking() const { return isShrinking_; }

 private:
  std::string shrink(std::string text, std::uint64_t seed, std::string& failure, const Check& check,
                     const Simplify& simplify);

  const std::uint64_t seed_;
  const std::size_t cases_;
  std::optional<std::string> only_;  // the case to ask instead of all
  bool isShrinking_ = false;
  std::map<std::string, std::size_t> counts_;
};

}  // namespace test
