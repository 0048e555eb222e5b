#include "pathfinder/baseline_combination.hpp"

#include <algorithm>
#include <utility>

namespace tarn::evolution::pathfinder {

namespace {

/// One baseline for each candidate of the first name.
std::vector<VersionBaseline> startWith(const Alternatives& first) {
  std::vector<VersionBaseline> result;
  result.reserve(first.candidates->size());
  for (const auto& candidate : *first.candidates) {
    if (auto baseline = VersionBaseline::create({candidate}))
      result.push_back(*std::move(baseline));
  }
  return result;
}

/// Appends to `result` every way to give `baseline` one of the alternatives.
void extend(VersionBaseline&& baseline, const Alternatives& alternatives,
            std::vector<VersionBaseline>& result) {
  const auto& candidates = *alternatives.candidates;
  const auto held = baseline.metamodels.find(*alternatives.name);
  if (held != baseline.metamodels.end() && held->second) {
    const bool admitted =
        std::find(candidates.begin(), candidates.end(), held->second) != candidates.end();
    if (admitted) result.push_back(std::move(baseline));
    return;
  }
  for (const auto& candidate : candidates) {
    VersionBaseline extended = baseline;
    if (extended.tryEmplace(candidate)) result.push_back(std::move(extended));
  }
}

}  // namespace

std::vector<VersionBaseline> combineInOrder(const std::vector<Alternatives>& alternatives) {
  if (alternatives.empty()) return {};
  std::vector<VersionBaseline> partial = startWith(alternatives.front());
  for (auto next = alternatives.begin() + 1; next != alternatives.end() && !partial.empty();
       ++next) {
    std::vector<VersionBaseline> extended;
    extended.reserve(partial.size());
    for (VersionBaseline& baseline : partial) extend(std::move(baseline), *next, extended);
    partial = std::move(extended);
  }
  return partial;
}

}  // namespace tarn::evolution::pathfinder
