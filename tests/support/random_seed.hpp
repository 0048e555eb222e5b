#pragma once

#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

namespace test {

/// A new seed in each run, printed; TARN_RANDOM_SEED repeats one.
inline unsigned randomSeed() {
  const char* given = std::getenv("TARN_RANDOM_SEED");
  const unsigned seed =
      given == nullptr ? std::random_device()() : static_cast<unsigned>(std::stoul(given));
  std::cout << "TARN_RANDOM_SEED=" << seed << std::endl;
  return seed;
}

/// As how much of its usual work a test of stores is to do: TARN_STORE_EFFORT, or 1.
inline unsigned storeEffort() {
  const char* given = std::getenv("TARN_STORE_EFFORT");
  return given == nullptr ? 1 : static_cast<unsigned>(std::stoul(given));
}

}  // namespace test
