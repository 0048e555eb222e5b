#include "pathfinder/planning/plan_cost.hpp"

#include <algorithm>
#include <array>

#include "pathfinder/planning/version_bounds.hpp"

namespace tarn::evolution::pathfinder {

namespace {

/// The heavier one comes first.
std::strong_ordering orderOfWeights(std::uint64_t left, std::uint64_t right) {
  return right <=> left;
}

/// What comes after the last weight that is told.
enum class Ending { CutOff, End, MoreWeights };

Ending endingOf(const CostBound& bound, bool hasMore) {
  if (hasMore) return Ending::MoreWeights;
  return bound.isCutOff ? Ending::CutOff : Ending::End;
}

/// Orders bounds of equal totals, of which the left one has no more decided steps.
std::strong_ordering orderOfSequences(const WeightChains& chains, const CostBound& left,
                                      const CostBound& right) {
  const std::uint32_t shared = chains.length(left.decided);
  const std::uint32_t between = chains.length(right.decided) - shared;
  const WeightChain beginning = chains.prefix(right.decided, shared);
  if (left.decided != beginning) {
    const std::uint32_t place = chains.length(chains.commonPrefix(left.decided, beginning));
    return orderOfWeights(chains.weightAt(left.decided, place), chains.weightAt(beginning, place));
  }
  std::array<std::uint64_t, lookahead + 1> decided;
  const auto compared =
      std::min<std::uint32_t>(between, static_cast<std::uint32_t>(left.ahead.size()));
  chains.copy(right.decided, shared, shared + compared, decided.data());
  for (std::uint32_t i = 0; i < compared; ++i) {
    if (left.ahead[i] != decided[i]) return orderOfWeights(left.ahead[i], decided[i]);
  }
  if (left.ahead.size() < between) {
    return endingOf(left, false) <=> Ending::MoreWeights;
  }
  const auto rest = left.ahead.subspan(between);
  const auto [l, r] =
      std::mismatch(rest.begin(), rest.end(), right.ahead.begin(), right.ahead.end());
  if (l != rest.end() && r != right.ahead.end()) return orderOfWeights(*l, *r);
  return endingOf(left, l != rest.end()) <=> endingOf(right, r != right.ahead.end());
}

}  // namespace

std::strong_ordering order(const WeightChains& chains, const CostBound& left,
                           const CostBound& right) {
  if (left.total != right.total) return left.total <=> right.total;
  if (chains.length(left.decided) <= chains.length(right.decided)) {
    return orderOfSequences(chains, left, right);
  }
  return 0 <=> orderOfSequences(chains, right, left);
}

}  // namespace tarn::evolution::pathfinder
