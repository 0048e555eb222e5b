// Deletion: each assumption is left out for a trial, and for good if the rest is refuted without
// it. What a refutation does not use goes with it.

#include "pathfinder/learning/irreducible_assumptions.hpp"

#include <numeric>

namespace tarn::evolution::pathfinder {

std::optional<std::vector<std::size_t>> findIrreducible(SatSolver& solver,
                                                        std::span<const Literal> fixed,
                                                        std::span<const Literal> assumptions) {
  std::vector<std::size_t> kept(assumptions.size());
  std::iota(kept.begin(), kept.end(), std::size_t{0});
  const auto isRefuted = [&](std::size_t without) {
    std::vector<Literal> assumed(fixed.begin(), fixed.end());
    for (std::size_t i = 0; i < kept.size(); ++i) {
      if (i != without) assumed.push_back(assumptions[kept[i]]);
    }
    return !solver.solve(assumed);
  };
  const auto keepWhatFailed = [&] {
    std::erase_if(kept, [&](std::size_t place) { return !solver.hasFailed(assumptions[place]); });
  };
  if (!isRefuted(kept.size())) return std::nullopt;
  keepWhatFailed();
  for (std::size_t i = 0; i < kept.size();) {
    if (isRefuted(i)) {
      kept.erase(kept.begin() + static_cast<std::ptrdiff_t>(i));
      keepWhatFailed();
      i = 0;
    } else {
      ++i;
    }
  }
  return kept;
}

}  // namespace tarn::evolution::pathfinder
