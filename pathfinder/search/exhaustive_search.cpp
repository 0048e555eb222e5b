// Dijkstra's algorithm over baselines, with the steps out of a baseline generated when it is taken.
//
// Invariants: baselines are taken by ascending weight and, within one weight, in the order in which
// they were added; a baseline that was taken is never improved, for no step has a negative weight.
// An entry that has been improved stays in the queue and is skipped when it comes up.
//
// Cost: for each baseline taken, the product of (hops + 1) over its metamodels. docs/search.md
// derives from it the order of paths that every other engine has to keep.

#include "pathfinder/search/exhaustive_search.hpp"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <functional>
#include <queue>
#include <unordered_map>
#include <utility>

#include "messages/trace.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/search/step_generation.hpp"
#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::traceValue;

namespace {

/// A baseline that has been reached, by the lightest way known when it was added.
struct Reached {
  std::uint64_t weight;
  const VersionBaseline* baseline;
  const Reached* parent;  ///< null for a source
  LockstepHop hops;       ///< from the parent's baseline to this one
};

/// Hashes a baseline by the identity of its linked metamodels, whatever their order in the map.
/// Cheaper than hashing names, and it tells variants of one metamodel apart.
struct IdentityHash {
  std::size_t operator()(const VersionBaseline* baseline) const noexcept {
    std::size_t result = 0;
    for (const auto& [name, linked] : baseline->metamodels) {
      result ^= reinterpret_cast<std::uintptr_t>(linked.get()) * 0x9e3779b97f4a7c15U;
    }
    return result ^ (result >> 32);
  }
};

struct SameBaseline {
  bool operator()(const VersionBaseline* left, const VersionBaseline* right) const {
    return *left == *right;
  }
};

/// The baselines reached so far, to be taken by weight and, within one weight, in the order of
/// addition.
class Frontier {
 public:
  /// Adds a baseline to start from, which must outlive the frontier.
  void addSource(const VersionBaseline& source) { add(0, source, nullptr, {}); }

  /// Adds what a step leads to.
  void addAfter(const Reached& parent, std::uint64_t stepWeight, BaselineHop&& step) {
    const std::uint64_t weight = parent.weight + stepWeight;
    const auto known = cheapest_.find(&step.to);
    if (known != cheapest_.end() && known->second->weight <= weight) return;
    add(weight, baselines_.emplace_back(std::move(step.to)), &parent, std::move(step.hops));
  }

  /// The next baseline; null when there is none left.
  const Reached* take() {
    while (!waiting_.empty()) {
      const Waiting next = waiting_.top();
      waiting_.pop();
      if (cheapest_.at(next.entry->baseline) == next.entry) return next.entry;
    }
    return nullptr;
  }

 private:
  struct Waiting {
    std::uint64_t weight;
    std::size_t sequence;
    const Reached* entry;

    bool operator>(const Waiting& other) const {
      return std::pair(weight, sequence) > std::pair(other.weight, other.sequence);
    }
  };

  /// Adds a baseline, unless it stands here already at no greater weight. One that is taken never
  /// comes back: steps have no negative weight.
  void add(std::uint64_t weight, const VersionBaseline& baseline, const Reached* parent,
           LockstepHop&& hops) {
    const auto [known, isNew] = cheapest_.try_emplace(&baseline);
    if (!isNew && known->second->weight <= weight) return;
    known->second = &entries_.emplace_back(Reached{weight, &baseline, parent, std::move(hops)});
    waiting_.push({weight, entries_.size(), known->second});
  }

  // Never moved: what is below points into them.
  std::deque<VersionBaseline> baselines_;
  std::deque<Reached> entries_;
  std::priority_queue<Waiting, std::vector<Waiting>, std::greater<>> waiting_;
  std::unordered_map<const VersionBaseline*, const Reached*, IdentityHash, SameBaseline> cheapest_;
};

SearchAnswer pathTo(const Reached& end, const VersionBaseline& target) {
  std::vector<const Reached*> entries;
  const Reached* entry = &end;
  for (; entry->parent != nullptr; entry = entry->parent) entries.push_back(entry);
  const VersionBaseline* source = entry->baseline;
  std::reverse(entries.begin(), entries.end());
  std::vector<BaselineHop> path;
  path.reserve(entries.size());
  for (const Reached* reached : entries) {
    path.emplace_back(*reached->parent->baseline, *reached->baseline, reached->hops);
  }
  return {SearchAnswer::Verdict::Found, std::move(path), source, &target};
}

/// The most linked metamodels that a version of the baseline has.
std::size_t mostVariants(SearchHost& host, const VersionBaseline& baseline) {
  std::size_t most = 1;
  for (const auto& [name, linked] : baseline.metamodels) {
    if (linked && !linked->linkedMetamodels.empty()) {
      most = std::max(most, host.getLinkedMetamodels(*linked).size());
    }
  }
  return most;
}

/// Takes what it costs to try so many combinations from the budget; false when it is not enough.
bool spend(std::uint64_t& budget, std::uint64_t combinations, const SearchQuestion& question,
           const VersionBaseline& baseline) {
  constexpr std::size_t variantsOfOneCombination = 32;  // that are combined in the same time
  if (budget == unlimitedBudget) return true;
  if (combinations > budget) return false;
  const std::uint64_t cost =
      combinations * (1 + mostVariants(question.host, baseline) / variantsOfOneCombination);
  if (cost > budget) return false;
  budget -= cost;
  return true;
}

}  // namespace

SearchAnswer searchExhaustively(const SearchQuestion& question, std::uint64_t budget) {
  SearchWatch* watch = SearchWatch::current();
  if (watch != nullptr) watch->enter(SearchProgress::Stage::Exhaustive);
  Frontier frontier;
  for (const VersionBaseline& source : question.sources) frontier.addSource(source);
  while (const Reached* current = frontier.take()) {
    if (watch != nullptr) watch->noteProven(current->weight);
    question.traceTrying(*current->baseline);
    if (const VersionBaseline* target = question.targetIn(*current->baseline)) {
      traceValue("Reached target");
      return pathTo(*current, *target);
    }
    StepGeneration generation(question.host, *current->baseline, question.direction, budget);
    if (!spend(budget, generation.combinationCount(), question, *current->baseline)) {
      return {SearchAnswer::Verdict::Unsettled};
    }
    for (BaselineHop& step : generation.run()) {
      frontier.addAfter(*current, weightOf(step.hops), std::move(step));
    }
  }
  traceValue("Exhausted search");
  return {};
}

}  // namespace tarn::evolution::pathfinder
