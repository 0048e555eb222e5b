// Backtracking: picks a candidate for name after name, and goes back where a baseline admits none.
// Exponential at worst, so picks are counted.

#include "catalogue/explanation/candidate_combination.hpp"

#include <algorithm>

namespace tarn::evolution::catalogue {

using pathfinder::VersionBaseline;

namespace {

constexpr std::size_t mostPicks = 200'000;

/// Picks depth first, name by name.
class Combination {
 public:
  Combination(const std::vector<Candidates>& candidates, std::size_t limit)
      : candidates_(candidates), limit_(limit) {}

  CombinedCandidates run() {
    if (!candidates_.empty()) pick(0, VersionBaseline());
    return std::move(result_);
  }

 private:
  void pick(std::size_t position, const VersionBaseline& baseline) {
    if (position == candidates_.size()) {
      result_.baselines.push_back(baseline);
      return;
    }
    for (const auto& candidate : candidates_[position].linked) {
      if (result_.isCut) return;
      if (result_.baselines.size() == limit_ || picks_++ == mostPicks) {
        result_.isCut = true;
        return;
      }
      if (!baseline.admits(candidate)) continue;
      VersionBaseline extended = baseline;
      extended.tryEmplace(candidate);
      pick(position + 1, extended);
    }
  }

  const std::vector<Candidates>& candidates_;
  const std::size_t limit_;
  std::size_t picks_ = 0;
  CombinedCandidates result_;
};

}  // namespace

CombinedCandidates combineCandidates(const std::vector<Candidates>& candidates, std::size_t limit) {
  return Combination(candidates, limit).run();
}

bool canStandTogether(const std::vector<Candidates>& candidates) {
  if (candidates.empty()) return true;
  std::vector<Candidates> fewestFirst = candidates;
  std::stable_sort(fewestFirst.begin(), fewestFirst.end(), [](const auto& left, const auto& right) {
    return left.linked.size() < right.linked.size();
  });
  const CombinedCandidates combined = combineCandidates(fewestFirst, 1);
  return combined.isCut || !combined.baselines.empty();
}

}  // namespace tarn::evolution::catalogue
