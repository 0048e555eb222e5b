#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "catalogue/comparison/comparison.hpp"

/// The words for differences, in text as in JSON.
namespace tarn::evolution::catalogue {

inline constexpr const char* differenceKinds[] = {"added", "removed", "changed"};

template <class Difference>
std::string kindOf(const Difference& difference) {
  if (!difference.former) return "added";
  return difference.present ? "changed" : "removed";
}

template <class Difference>
std::uint64_t countOf(const std::vector<Difference>& differences, const std::string& kind) {
  return static_cast<std::uint64_t>(
      std::count_if(differences.begin(), differences.end(),
                    [&](const Difference& each) { return kindOf(each) == kind; }));
}

inline std::string wordOf(AnswerChange change) {
  constexpr const char* words[] = {"lost", "dearer", "gained", "cheaper", "open"};
  return words[static_cast<std::size_t>(change)];
}

}  // namespace tarn::evolution::catalogue
