#pragma once

#include <cstdint>
#include <optional>

namespace tarn::evolution::pathfinder {

/// Makes the solvers that this thread creates, while it lives, choose at random where they are
/// free: which clause comes first, which value is tried first. What they prove stays the same. For
/// tests, which show that nothing else depends on these choices.
class RandomChoices {
 public:
  explicit RandomChoices(std::uint64_t seed) { seed_ = seed; }
  RandomChoices(const RandomChoices&) = delete;
  RandomChoices& operator=(const RandomChoices&) = delete;
  ~RandomChoices() { seed_.reset(); }

  /// None: the solver's own choices.
  static const std::optional<std::uint64_t>& seed() { return seed_; }

 private:
  static inline thread_local std::optional<std::uint64_t> seed_;
};

}  // namespace tarn::evolution::pathfinder
