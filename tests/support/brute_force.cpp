#include "support/brute_force.hpp"

#include <algorithm>
#include <utility>

namespace test {

namespace {

constexpr std::size_t mostSteps = 20'000;

std::uint64_t weightOf(const LockstepHop& hops) {
  std::uint64_t expensive = 0;
  for (const auto& [name, hop] : hops) expensive += hop.expensive ? 1 : 0;
  const std::uint64_t others = hops.size() - expensive;
  return expensive * 1'000'000'000 + (others == 0 ? 0 : others + 1);
}

bool includes(const BruteForce::Baseline& baseline, const BruteForce::Baseline& part) {
  return std::includes(baseline.begin(), baseline.end(), part.begin(), part.end());
}

}  // namespace

BruteForce::BruteForce(PlainModel& model, const std::vector<Baseline>& sources,
                       const std::vector<Baseline>& targets, VersionRepository::Direction direction)
    : model_(model), targets_(targets), direction_(direction) {
  for (std::size_t i = 0; i < sources.size(); ++i) {
    Way start;
    start.rank = {0, i};
    start.source = i;
    offer(sources[i], std::move(start));
  }
  while (improve()) continue;
  const Way* best = nullptr;
  for (const auto& entry : ways_) {
    const Way& way = entry.second;
    const auto included =
        std::find_if(targets_.begin(), targets_.end(),
                     [&entry](const Baseline& part) { return includes(entry.first, part); });
    if (included == targets_.end() || (best != nullptr && best->rank < way.rank)) continue;
    best = &way;
    target = static_cast<std::size_t>(included - targets_.begin());
  }
  if (best == nullptr) return;
  path = best->path;
  source = best->source;
}

/// Tries every step after every way that is new; returns whether one led to a better way.
bool BruteForce::improve() {
  bool isBetter = false;
  for (auto& [baseline, way] : ways_) {
    if (std::exchange(way.isNew, false)) isBetter |= goOn(way);
  }
  return isBetter;
}

bool BruteForce::goOn(const Way& way) {
  bool isBetter = false;
  for (std::size_t i = 0; i < way.steps.size(); ++i) {
    Way next;
    next.rank = {way.rank[0] + weightOf(way.steps[i].hops)};
    next.rank.insert(next.rank.end(), way.rank.begin(), way.rank.end());
    next.rank.push_back(i);
    next.source = way.source;
    next.path = way.path;
    next.path.push_back(way.steps[i]);
    isBetter |= offer(way.steps[i].to, std::move(next));
  }
  return isBetter;
}

/// Takes a way to a baseline if it is the best one so far.
bool BruteForce::offer(const Baseline& baseline, Way&& better) {
  Way& way = ways_[baseline];
  if (way.rank.empty()) {
    better.steps = model_.stepsFrom(baseline, direction_);
    stepCount_ += better.steps.size();
    if (stepCount_ > mostSteps) throw TooMany();
  } else if (way.rank <= better.rank) {
    return false;
  } else {
    better.steps = std::move(way.steps);
  }
  way = std::move(better);
  return true;
}

}  // namespace test
