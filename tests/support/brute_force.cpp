#include "support/brute_force.hpp"

#include <algorithm>
#include <utility>

namespace test {

namespace {

std::uint64_t weightOf(const LockstepHop& hops) {
  std::uint64_t expensive = 0;
  for (const auto& [name, hop] : hops) expensive += hop.expensive ? 1 : 0;
  const std::uint64_t others = hops.size() - expensive;
  return expensive * 1'000'000'000 + (others == 0 ? 0 : others + 1);
}

bool reaches(const BruteForce::Baseline& baseline, const BruteForce::Goal& goal) {
  return std::includes(baseline.begin(), baseline.end(), goal.holds.begin(), goal.holds.end()) &&
         std::none_of(goal.lacks.begin(), goal.lacks.end(),
                      [&](const std::u16string& name) { return baseline.contains(name); });
}

std::vector<BruteForce::Goal> goalsOf(const std::vector<BruteForce::Baseline>& targets) {
  std::vector<BruteForce::Goal> goals;
  goals.reserve(targets.size());
  for (const BruteForce::Baseline& target : targets) goals.push_back({target});
  return goals;
}

}  // namespace

BruteForce::BruteForce(PlainModel& model, const std::vector<Baseline>& sources,
                       const std::vector<Baseline>& targets, VersionRepository::Direction direction,
                       std::size_t mostSteps)
    : BruteForce(model, sources, goalsOf(targets), direction, mostSteps) {}

BruteForce::BruteForce(PlainModel& model, const std::vector<Baseline>& sources,
                       std::vector<Goal> targets, VersionRepository::Direction direction,
                       std::size_t mostSteps)
    : model_(model), targets_(std::move(targets)), direction_(direction), stepsLeft_(mostSteps) {
  for (std::size_t i = 0; i < sources.size(); ++i) offer(sources[i], {0, i}, nullptr, i);
  while (improve()) continue;
  if (const Way* best = bestAtTarget()) takePathTo(*best);
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
  for (std::size_t i = 0; i < way.steps->size(); ++i) {
    Rank rank{way.rank[0] + weightOf((*way.steps)[i].hops)};
    rank.insert(rank.end(), way.rank.begin(), way.rank.end());
    rank.push_back(i);
    isBetter |= offer((*way.steps)[i].to, rank, &way, i);
  }
  return isBetter;
}

/// Takes a way to a baseline if it is the best one so far.
bool BruteForce::offer(const Baseline& baseline, const Rank& rank, const Way* before,
                       std::size_t place) {
  Way& way = ways_[baseline];
  if (way.rank.empty()) {
    way.steps = &model_.stepsFrom(baseline, direction_);
    if (way.steps->size() > stepsLeft_) throw TooMany();
    stepsLeft_ -= way.steps->size();
  } else if (way.rank <= rank) {
    return false;
  }
  way.rank = rank;
  way.before = before;
  way.place = place;
  way.isNew = true;
  return true;
}

const BruteForce::Way* BruteForce::bestAtTarget() {
  const Way* best = nullptr;
  for (const auto& entry : ways_) {
    const Way& way = entry.second;
    const auto included =
        std::find_if(targets_.begin(), targets_.end(),
                     [&entry](const Goal& goal) { return reaches(entry.first, goal); });
    if (included == targets_.end() || (best != nullptr && best->rank < way.rank)) continue;
    best = &way;
    target = static_cast<std::size_t>(included - targets_.begin());
  }
  return best;
}

void BruteForce::takePathTo(const Way& end) {
  path.emplace();
  const Way* way = &end;
  for (; way->before != nullptr; way = way->before) {
    path->push_back((*way->before->steps)[way->place]);
  }
  std::reverse(path->begin(), path->end());
  source = way->place;
}

}  // namespace test
