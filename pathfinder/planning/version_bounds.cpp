// Bounds of single versions, in three passes:
//
// 1. Distances: Dijkstra's algorithm over the versions of each name.
// 2. Reachability, level by level, as in a relaxed planning graph with mutual exclusion: level k is
//    what can be held after k steps with an ordinary hop. A level adds what lies one ordinary hop
//    from the level before, closed under expensive hops and under what links bring in. Arc
//    consistency (Mackworth's AC-3, by names) then removes what it added and what has no support,
//    which is a version of each other name that can stand beside it, until all have. What was
//    there before keeps its support, so only additions are looked at. What was removed is tried
//    again in the next level.
// 3. Cheapest ways: along the shortest-path graphs of pass 1, in the order of distances, each
//    version takes the heaviest of the ways that end in it.
//
// Every pass only leaves constraints out, so no bound is worse than the truth. Time follows
// versions and hops, but for arc consistency: levels x names that it looks at x their rows of bits.

#include "pathfinder/planning/version_bounds.hpp"

#include <iterator>
#include <limits>
#include <span>
#include <utility>

#include "pathfinder/planning/version_set.hpp"
#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

namespace {

constexpr std::uint64_t neverReached = std::numeric_limits<std::uint64_t>::max();

class BoundsComputation {
 public:
  BoundsComputation(const SearchSpace& space, const Compatibility& compatibility)
      : space_(space),
        compatibility_(compatibility),
        bounds_(space.versions.size()),
        distances_(space.versions.size(), neverReached),
        starts_(space),
        needsNoSupport_(space),
        isGrounded_(space.versions.size()) {
    for (const auto& [selection, isRegular] : space.sources) {
      for (const VersionIndex version : selection) {
        starts_.insert(version);
        isGrounded_[version] = true;
        if (!isRegular) needsNoSupport_.insert(version);
      }
    }
  }

  AllVersionBounds run() {
    for (const SearchSpace::Name& name : space_.names) measureDistances(name);
    growLevels();
    for (const SearchSpace::Name& name : space_.names) chooseCheapestWays(name);
    return std::move(bounds_);
  }

 private:
  using Waiting = std::pair<std::uint64_t, VersionIndex>;  // distance, version

  bool startsAbsent(const SearchSpace::Name& name) const {
    return name.absent != SearchSpace::none && starts_.contains(name.absent);
  }

  /// Whether the name can be at the version before any hop of its own.
  bool isStart(const SearchSpace::Name& name, VersionIndex version) const {
    return starts_.contains(version) || (startsAbsent(name) && space_.versions[version].isEntry);
  }

  void measureDistances(const SearchSpace::Name& name) {
    const auto isFarther = [](const Waiting& left, const Waiting& right) { return left > right; };
    const auto reach = [&](VersionIndex version, std::uint64_t distance) {
      if (distance >= distances_[version]) return;
      distances_[version] = distance;
      waiting_.emplace_back(distance, version);
      std::push_heap(waiting_.begin(), waiting_.end(), isFarther);
    };
    for (VersionIndex version = name.first; version < name.end; ++version) {
      if (isStart(name, version)) reach(version, 0);
    }
    while (!waiting_.empty()) {
      const auto [distance, version] = waiting_.front();
      std::pop_heap(waiting_.begin(), waiting_.end(), isFarther);
      waiting_.pop_back();
      if (distance > distances_[version]) continue;
      for (const SearchSpace::Move& move : space_.versions[version].moves) {
        reach(move.target, distance + hopWeight(move.expensive));
      }
    }
  }

  void growLevels() {
    VersionSet held = starts_;
    std::vector<VersionIndex> added;
    for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
      if (starts_.contains(version)) added.push_back(version);
    }
    std::vector<VersionIndex> unsupported;
    std::vector<VersionIndex> fresh;
    for (std::uint32_t level = 0; !added.empty(); ++level) {
      growWithoutOrdinaryHops(held, added);
      removeUnsupported(held, added);
      unsupported.clear();
      std::erase_if(added, [&](VersionIndex version) {
        if (held.contains(version)) return false;
        unsupported.push_back(version);
        return true;
      });
      for (const VersionIndex version : added) noteReachable(version, level);
      fresh.swap(added);
      growByOrdinaryHops(held, fresh, unsupported, added);
    }
  }

  void noteReachable(VersionIndex version, std::uint32_t level) {
    visitWithoutOrdinaryHop(version, [this](VersionIndex next) { isGrounded_[next] = true; });
    VersionBounds& bounds = bounds_[version];
    bounds.isReachable = true;
    bounds.distance = distances_[version];
    const std::uint64_t ordinaryHops = ordinaryPart(bounds.distance);
    bounds.ordinaryStepsEver = level;
    bounds.ordinarySteps = std::max(level, static_cast<std::uint32_t>(ordinaryHops));
  }

  /// Adds, and lists, what the versions added last lead to, and again what had no support; nothing
  /// when nothing new has come that could make a difference.
  void growByOrdinaryHops(VersionSet& held, const std::vector<VersionIndex>& fresh,
                          const std::vector<VersionIndex>& unsupported,
                          std::vector<VersionIndex>& added) {
    added.clear();
    if (fresh.empty()) return;
    const auto add = [&](VersionIndex version) {
      if (!space_.versions[version].canBeCombined) return;
      if (held.insert(version)) added.push_back(version);
    };
    for (const VersionIndex version : fresh) {
      for (const SearchSpace::Move& move : space_.versions[version].moves) {
        if (move.expensive) continue;
        isGrounded_[move.target] = true;
        add(move.target);
      }
    }
    for (const VersionIndex version : unsupported) add(version);
  }

  /// Adds, and lists, what the listed versions lead to by expensive hops and by links.
  void growWithoutOrdinaryHops(VersionSet& held, std::vector<VersionIndex>& added) const {
    const auto add = [&](VersionIndex version) {
      if (!space_.versions[version].canBeCombined) return;
      if (held.insert(version)) added.push_back(version);
    };
    // The list grows on the way.
    for (std::size_t i = 0; i < added.size(); ++i) {  // NOLINT(modernize-loop-convert)
      visitWithoutOrdinaryHop(added[i], add);
    }
  }

  /// Removes listed versions that have no support, and those that only such ones lead to or bring
  /// in, until there are none.
  void removeUnsupported(VersionSet& held, const std::vector<VersionIndex>& added) {
    while (removeIncompatible(held, added) && removeUngrounded(held, added)) {
    }
  }

  /// Whether anything was removed.
  bool removeUngrounded(VersionSet& held, const std::vector<VersionIndex>& added) {
    grounded_.clear();
    isMarked_.resize(space_.versions.size());
    for (const VersionIndex version : added) {
      if (held.contains(version) && isGrounded_[version]) mark(version);
    }
    // The list grows on the way.
    for (std::size_t i = 0; i < grounded_.size(); ++i) {  // NOLINT(modernize-loop-convert)
      visitWithoutOrdinaryHop(grounded_[i], [&](VersionIndex next) {
        if (held.contains(next) && !isMarked_[next]) mark(next);
      });
    }
    bool anyRemoved = false;
    for (const VersionIndex version : added) {
      if (!held.contains(version) || isMarked_[version]) continue;
      held.erase(version);
      anyRemoved = true;
    }
    for (const VersionIndex version : grounded_) isMarked_[version] = false;
    return anyRemoved;
  }

  void mark(VersionIndex version) {
    isMarked_[version] = true;
    grounded_.push_back(version);
  }

  /// Calls `visit(next)` for what a version leads to by expensive hops and brings in by links.
  template <class Visit>
  void visitWithoutOrdinaryHop(VersionIndex version, const Visit& visit) const {
    for (const SearchSpace::Move& move : space_.versions[version].moves) {
      if (move.expensive) visit(move.target);
    }
    for (const VersionIndex entry : space_.entriesBy(version)) {
      if (startsAbsent(space_.names[space_.versions[entry].name])) visit(entry);
    }
  }

  /// Removes listed versions beside which no version of some other name can stand, until there are
  /// none. Whether anything was removed.
  bool removeIncompatible(VersionSet& held, const std::vector<VersionIndex>& added) {
    checked_.clear();
    std::copy_if(added.begin(), added.end(), std::back_inserter(checked_),
                 [&](VersionIndex version) {
                   return !compatibility_.neighbours(space_.versions[version].name).empty();
                 });
    std::sort(checked_.begin(), checked_.end());
    const auto groups = groupedByName(checked_);
    std::vector<bool> isOpen(groups.empty() ? 0 : space_.names.size(), true);
    bool hasRemoved = false;
    for (bool anyRemoved = true; std::exchange(anyRemoved, false);) {
      for (const std::span<const VersionIndex> group : groups) {
        const NameIndex name = space_.versions[group.front()].name;
        if (!isOpen[name]) continue;
        isOpen[name] = false;
        if (!removeIncompatible(group, held)) continue;
        anyRemoved = true;
        hasRemoved = true;
        for (const NameIndex neighbour : compatibility_.neighbours(name)) isOpen[neighbour] = true;
      }
    }
    return hasRemoved;
  }

  /// The versions of each name; those given ascend.
  std::vector<std::span<const VersionIndex>> groupedByName(
      std::span<const VersionIndex> versions) const {
    std::vector<std::span<const VersionIndex>> groups;
    while (!versions.empty()) {
      const auto end = std::find_if(versions.begin(), versions.end(), [&](VersionIndex version) {
        return space_.versions[version].name != space_.versions[versions.front()].name;
      });
      const auto size = static_cast<std::size_t>(end - versions.begin());
      groups.push_back(versions.first(size));
      versions = versions.subspan(size);
    }
    return groups;
  }

  bool removeIncompatible(std::span<const VersionIndex> added, VersionSet& held) const {
    bool anyRemoved = false;
    for (const VersionIndex version : added) {
      if (!held.contains(version) || isSupported(version, held)) continue;
      held.erase(version);
      anyRemoved = true;
    }
    return anyRemoved;
  }

  bool isSupported(VersionIndex version, const VersionSet& held) const {
    if (needsNoSupport_.contains(version)) return true;
    const auto& neighbours = compatibility_.neighbours(space_.versions[version].name);
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
      if (!compatibility_.row(version, i).meets(held.of(neighbours[i]))) return false;
    }
    return true;
  }

  void chooseCheapestWays(const SearchSpace::Name& name) {
    byDistance_.clear();
    for (VersionIndex version = name.first; version < name.end; ++version) {
      if (distances_[version] != neverReached) byDistance_.push_back(version);
    }
    std::sort(byDistance_.begin(), byDistance_.end(),
              [this](VersionIndex left, VersionIndex right) {
                return distances_[left] < distances_[right];
              });
    for (const VersionIndex version : byDistance_) {
      for (const SearchSpace::Move& move : space_.versions[version].moves) {
        const std::uint64_t weight = hopWeight(move.expensive);
        if (distances_[move.target] == distances_[version] + weight) {
          offerLastHop(move.target, weight, version);
        }
      }
    }
  }

  void offerLastHop(VersionIndex version, std::uint64_t hop, VersionIndex before) {
    VersionBounds& bounds = bounds_[version];
    const bool isHeavier = hop != bounds.lastHop ? hop > bounds.lastHop
                                                 : isHeavierFromEnd(bounds_, before, bounds.before);
    if (!isHeavier) return;
    bounds.lastHop = hop;
    bounds.before = before;
    bounds.hops = bounds_[before].hops + 1;
  }

  const SearchSpace& space_;
  const Compatibility& compatibility_;
  AllVersionBounds bounds_;
  std::vector<std::uint64_t> distances_;
  VersionSet starts_;
  VersionSet needsNoSupport_;  // held by a source that is not consistent

  /// By version: whether it is held from the start, or a version that is reachable leads to it or
  /// brings it in.
  std::vector<bool> isGrounded_;

  // Kept for their memory.
  std::vector<Waiting> waiting_;
  std::vector<VersionIndex> byDistance_;
  std::vector<VersionIndex> checked_;
  std::vector<VersionIndex> grounded_;
  std::vector<bool> isMarked_;  // by version: whether it is in that list
};

}  // namespace

bool isHeavierFromEnd(const AllVersionBounds& all, VersionIndex left, VersionIndex right) {
  for (std::uint32_t place = 0; place < lookahead && left != right; ++place) {
    const VersionBounds& one = all[left];
    const VersionBounds& other = all[right];
    if (one.lastHop != other.lastHop) return one.lastHop > other.lastHop;
    if (one.lastHop == 0) return false;
    left = one.before;
    right = other.before;
  }
  return false;
}

AllVersionBounds computeVersionBounds(const SearchSpace& space,
                                      const Compatibility& compatibility) {
  return BoundsComputation(space, compatibility).run();
}

}  // namespace tarn::evolution::pathfinder
