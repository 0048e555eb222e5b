// A path as changes from step to step.
//
// A copy of a hash map has its buckets and its order. So a baseline that has the names of the one
// before, in the same order, is made by copying that one and changing values in place; any other
// is kept whole. Hops stand in a vector, which takes less room than a map: filled with them from
// the last to the first, a map of as many buckets has its order again, for each new entry goes to
// the front of its bucket and each new bucket to the front of all.
#include "pathfinder/search/stored_path.hpp"

#include <algorithm>
#include <iterator>

namespace tarn::evolution::pathfinder {

namespace {

bool isFilledAlike(const VersionBaseline& left, const VersionBaseline& right) {
  const auto& before = left.metamodels;
  const auto& after = right.metamodels;
  return before.bucket_count() == after.bucket_count() &&
         std::equal(before.begin(), before.end(), after.begin(), after.end(),
                    [](const auto& held, const auto& kept) { return held.first == kept.first; });
}

}  // namespace

StoredPath::Step::Step(const BaselineHop& step) : hopBuckets_(step.hops.bucket_count()) {
  std::vector<const LockstepHop::value_type*> inOrder;
  inOrder.reserve(step.hops.size());
  for (const auto& entry : step.hops) inOrder.push_back(&entry);
  hops_.reserve(inOrder.size());
  std::transform(inOrder.rbegin(), inOrder.rend(), std::back_inserter(hops_),
                 [](const auto* entry) { return *entry; });
  if (!isFilledAlike(step.from, step.to)) {
    to_ = std::make_unique<const VersionBaseline>(step.to);
    return;
  }
  changes_.reserve(hops_.size());
  std::size_t place = 0;
  auto after = step.to.metamodels.begin();
  for (const auto& [name, held] : step.from.metamodels) {
    if (held != after->second) changes_.emplace_back(place, after->second);
    ++place;
    ++after;
  }
}

BaselineHop StoredPath::Step::applyTo(const VersionBaseline& from) const {
  VersionBaseline to = to_ ? *to_ : from;
  auto entry = to.metamodels.begin();
  std::size_t place = 0;
  for (const auto& [changed, metamodel] : changes_) {
    for (; place < changed; ++place) ++entry;
    entry->second = metamodel;
  }
  return {from, std::move(to), LockstepHop(hops_.begin(), hops_.end(), hopBuckets_)};
}

StoredPath::StoredPath(std::shared_ptr<const VersionBaseline> start,
                       const std::vector<BaselineHop>& path)
    : start_(std::move(start)), steps_(path.begin(), path.end()) {}

std::vector<BaselineHop> StoredPath::restore() const {
  std::vector<BaselineHop> path;
  path.reserve(steps_.size());
  for (const Step& step : steps_) {
    path.push_back(step.applyTo(path.empty() ? *start_ : path.back().to));
  }
  return path;
}

}  // namespace tarn::evolution::pathfinder
