#pragma once

#include <cstdint>

#include "pathfinder/hop.hpp"

namespace tarn::evolution::pathfinder {

/// What an expensive hop weighs; an ordinary one weighs 1. So a sum of hop weights tells how many
/// of each there are, as long as there are fewer than this many ordinary ones.
inline constexpr std::uint64_t expensiveHopWeight = 1'000'000'000;

constexpr std::uint64_t hopWeight(bool expensive) {
  return expensive ? expensiveHopWeight : 1;
}

/// How many ordinary hops are in a sum of hop weights.
constexpr std::uint64_t ordinaryPart(std::uint64_t hopWeights) {
  return hopWeights % expensiveHopWeight;
}

/// The weight of a step whose hops have that sum of weights: one more if any of them is ordinary.
constexpr std::uint64_t stepWeight(std::uint64_t hopWeights) {
  return hopWeights + (ordinaryPart(hopWeights) > 0 ? 1 : 0);
}

/// The weight of a step.
inline std::uint64_t weightOf(const LockstepHop& hops) {
  std::uint64_t hopWeights = 0;
  for (const auto& [name, hop] : hops) hopWeights += hopWeight(hop.expensive);
  return stepWeight(hopWeights);
}

}  // namespace tarn::evolution::pathfinder
