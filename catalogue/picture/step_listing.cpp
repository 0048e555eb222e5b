#include "catalogue/picture/step_listing.hpp"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace tarn::evolution::catalogue {

using pathfinder::BaselineHop;
using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::VersionBaseline;
using pathfinder::VersionRepository;

namespace {

constexpr std::uint64_t unbounded = std::numeric_limits<std::uint64_t>::max();

std::uint64_t countHops(BrowsableRepository& repository, const Metamodel& from,
                        VersionRepository::Direction direction) {
  std::vector<Hop> hops;
  repository.findHops(from.name, from.version, hops);
  const auto isTaken = [&](const Hop& hop) {
    const auto target = repository.getMetamodel(hop.name, hop.to);
    return !target || !VersionRepository::areDirectionsInconsistent(
                          direction, repository.getDirection(from, *target));
  };
  return static_cast<std::uint64_t>(std::count_if(hops.begin(), hops.end(), isTaken));
}

std::vector<StepListing::Group> groupSteps(BrowsableRepository& repository,
                                           const VersionBaseline& baseline,
                                           std::vector<BaselineHop> steps) {
  std::stable_sort(steps.begin(), steps.end(),
                   [&](const BaselineHop& left, const BaselineHop& right) {
                     return repository.getWeight(left.hops) < repository.getWeight(right.hops);
                   });
  std::vector<StepListing::Group> groups;
  for (const auto direction :
       {VersionRepository::Forward, VersionRepository::Backward, VersionRepository::Unknown}) {
    std::vector<BaselineHop> ofDirection;
    std::copy_if(steps.begin(), steps.end(), std::back_inserter(ofDirection),
                 [&](const BaselineHop& step) {
                   return repository.computeDirection(step.from, step.to) == direction;
                 });
    if (ofDirection.empty()) continue;
    groups.push_back({direction, drawPath(repository, baseline, ofDirection)});
    addNotes(repository, groups.back().picture);
  }
  return groups;
}

}  // namespace

std::uint64_t countHopCombinations(BrowsableRepository& repository, const VersionBaseline& baseline,
                                   VersionRepository::Direction direction) {
  std::uint64_t combinations = 1;
  for (const auto& [name, linked] : baseline.metamodels) {
    if (linked == nullptr) continue;
    const std::uint64_t choices = countHops(repository, *linked, direction) + 1;
    if (__builtin_mul_overflow(combinations, choices, &combinations)) return unbounded;
  }
  return combinations;
}

StepListing makeListing(BrowsableRepository& repository, const VersionBaseline& baseline,
                        std::vector<BaselineHop> steps) {
  return {baseline, groupSteps(repository, baseline, std::move(steps))};
}

TooManyCombinations::TooManyCombinations(std::uint64_t combinations, std::uint64_t limit)
    : std::runtime_error(
          (combinations == unbounded ? "more than 2^64" : std::to_string(combinations)) +
          " combinations of hops leave the selection, more than the limit of " +
          std::to_string(limit)) {}

std::vector<StepListing> listSteps(BrowsableRepository& repository, const Selection& selection,
                                   VersionRepository::Direction direction, std::uint64_t limit) {
  const std::vector<VersionBaseline> baselines = repository.combine(selection);
  std::uint64_t combinations = 0;
  for (const VersionBaseline& baseline : baselines) {
    if (__builtin_add_overflow(combinations, countHopCombinations(repository, baseline, direction),
                               &combinations)) {
      combinations = unbounded;
    }
  }
  if (combinations > limit) throw TooManyCombinations(combinations, limit);
  std::vector<StepListing> listings;
  listings.reserve(baselines.size());
  for (const VersionBaseline& baseline : baselines) {
    listings.push_back(
        makeListing(repository, baseline, repository.getStepsFrom(baseline, direction)));
  }
  return listings;
}

}  // namespace tarn::evolution::catalogue
