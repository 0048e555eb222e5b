#pragma once

#include <compare>
#include <cstdint>
#include <span>

#include "pathfinder/planning/weight_chains.hpp"

namespace tarn::evolution::pathfinder {

/// What a plan, or the end of one, costs: of two plans the one with the smaller total comes first
/// and, of equal totals, the one that is heavier where the step weights first differ, from the last
/// step back, or that ends there.
struct PlanCost {
  std::uint64_t total = 0;
  WeightChain weights = WeightChains::empty;

  bool operator==(const PlanCost&) const = default;
};

/// The best that may become of the end of a plan.
struct CostBound {
  std::uint64_t total = 0;                    ///< the least
  WeightChain decided = WeightChains::empty;  ///< the weights of the steps that are decided
  std::span<const std::uint64_t> ahead = {};  ///< the heaviest of those before them
  bool isCutOff = false;  ///< whether more may stand before these, of any weight
};

inline CostBound boundOf(const PlanCost& cost) {
  return {cost.total, cost.weights};
}

/// `less` when the left one comes first.
std::strong_ordering order(const WeightChains& chains, const CostBound& left,
                           const CostBound& right);

inline bool comesFirst(const WeightChains& chains, const CostBound& left, const CostBound& right) {
  return order(chains, left, right) < 0;
}

}  // namespace tarn::evolution::pathfinder
