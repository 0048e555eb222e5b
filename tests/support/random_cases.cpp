#include "support/random_cases.hpp"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace test {

unsigned randomCases(unsigned usual) {
  const char* percent = std::getenv("TARN_RANDOM_CASES");
  if (percent == nullptr) return usual;
  return std::max(1U, static_cast<unsigned>(usual * std::stoul(percent) / 100));
}

}  // namespace test
