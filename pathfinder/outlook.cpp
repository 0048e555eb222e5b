#include "pathfinder/outlook.hpp"

#include <algorithm>
#include <functional>
#include <limits>
#include <queue>
#include <utility>

#include "pathfinder/step_weight.hpp"

namespace tarn::evolution::pathfinder {

namespace {

constexpr std::uint64_t unreached = std::numeric_limits<std::uint64_t>::max();

/// A set of versions of all names, each name's in words of its own.
class VersionSet {
 public:
  VersionSet(const SearchSpace& space, const Coexistence& coexistence) : space_(&space) {
    std::size_t words = 0;
    for (NameIndex name = 0; name < space.names.size(); ++name) {
      start_.push_back(words);
      words += coexistence.words(name);
    }
    bits_.resize(words);
  }

  VersionBits* of(NameIndex name) { return &bits_[start_[name]]; }

  bool contains(VersionIndex version) const { return (bits_[word(version)] & mask(version)) != 0; }
  void insert(VersionIndex version) { bits_[word(version)] |= mask(version); }
  void erase(VersionIndex version) { bits_[word(version)] &= ~mask(version); }

  bool operator==(const VersionSet& other) const { return bits_ == other.bits_; }

 private:
  VersionIndex rank(VersionIndex version) const {
    return version - space_->names[space_->versions[version].name].first;
  }
  std::size_t word(VersionIndex version) const {
    return start_[space_->versions[version].name] + rank(version) / 64;
  }
  VersionBits mask(VersionIndex version) const { return VersionBits{1} << (rank(version) % 64); }

  const SearchSpace* space_;
  std::vector<std::size_t> start_;  // of each name's words
  std::vector<VersionBits> bits_;
};

class OutlookComputation {
 public:
  OutlookComputation(const SearchSpace& space, const Coexistence& coexistence,
                     const std::vector<VersionSelection>& sources)
      : space_(space),
        coexistence_(coexistence),
        outlooks_(space.versions.size()),
        distances_(space.versions.size(), unreached),
        starts_(space, coexistence) {
    for (const VersionSelection& source : sources) {
      for (const VersionIndex version : source) starts_.insert(version);
    }
  }

  std::vector<Outlook> run() {
    for (const SearchSpace::Name& name : space_.names) measureDistances(name);
    measureArrivals();
    for (const SearchSpace::Name& name : space_.names) measureRetreats(name);
    return std::move(outlooks_);
  }

 private:
  bool startsAbsent(const SearchSpace::Name& name) const {
    return name.absent != SearchSpace::none && starts_.contains(name.absent);
  }

  /// Whether the name can be at the version before any hop of its own.
  bool isStart(const SearchSpace::Name& name, VersionIndex version) const {
    return starts_.contains(version) || (startsAbsent(name) && space_.versions[version].isEntry);
  }

  void measureDistances(const SearchSpace::Name& name) {
    using Entry = std::pair<std::uint64_t, VersionIndex>;
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> waiting;
    const auto reach = [&](VersionIndex version, std::uint64_t distance) {
      if (distance >= distances_[version]) return;
      distances_[version] = distance;
      waiting.emplace(distance, version);
    };
    for (VersionIndex version = name.first; version < name.end; ++version) {
      if (isStart(name, version)) reach(version, 0);
    }
    while (!waiting.empty()) {
      const auto [distance, version] = waiting.top();
      waiting.pop();
      if (distance > distances_[version]) continue;
      for (const SearchSpace::Move& move : space_.versions[version].moves) {
        reach(move.target, distance + hopWeight(move.expensive));
      }
    }
  }

  /// Level by level, one for each step with an ordinary hop: what can be held after that many.
  void measureArrivals() {
    VersionSet held(space_, coexistence_);
    for (std::uint32_t level = 0;; ++level) {
      VersionSet grown = held;
      if (level == 0) {
        grown = starts_;
      } else {
        growByOrdinaryHops(held, grown);
      }
      growByEntries(grown);
      growByExpensiveHops(grown);
      strikeLonely(grown);
      for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
        if (grown.contains(version)) noteArrival(version, level);
      }
      if (level > 0 && grown == held) return;
      held = std::move(grown);
    }
  }

  void noteArrival(VersionIndex version, std::uint32_t level) {
    Outlook& outlook = outlooks_[version];
    if (std::exchange(outlook.arrives, true)) return;
    outlook.distance = distances_[version];
    const std::uint64_t ordinaryHops = ordinaryPart(outlook.distance);
    outlook.ordinarySteps = std::max(level, static_cast<std::uint32_t>(ordinaryHops));
  }

  void growByOrdinaryHops(const VersionSet& held, VersionSet& grown) const {
    for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
      if (!held.contains(version)) continue;
      for (const SearchSpace::Move& move : space_.versions[version].moves) {
        if (!move.expensive) grown.insert(move.target);
      }
    }
  }

  void growByEntries(VersionSet& grown) const {
    for (const SearchSpace::Name& name : space_.names) {
      if (name.absent == SearchSpace::none || !grown.contains(name.absent)) continue;
      for (VersionIndex version = name.first; version < name.end; ++version) {
        if (space_.versions[version].isEntry) grown.insert(version);
      }
    }
  }

  void growByExpensiveHops(VersionSet& grown) const {
    std::vector<VersionIndex> open;
    for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
      if (grown.contains(version)) open.push_back(version);
    }
    while (!open.empty()) {
      const VersionIndex version = open.back();
      open.pop_back();
      for (const SearchSpace::Move& move : space_.versions[version].moves) {
        if (!move.expensive || grown.contains(move.target)) continue;
        grown.insert(move.target);
        open.push_back(move.target);
      }
    }
  }

  /// Strikes versions beside which no version of some other name can stand, until there is none.
  void strikeLonely(VersionSet& grown) const {
    std::vector<bool> isOpen(space_.names.size(), true);
    for (bool anyOpen = true; std::exchange(anyOpen, false);) {
      for (NameIndex name = 0; name < space_.names.size(); ++name) {
        if (!isOpen[name]) continue;
        isOpen[name] = false;
        if (!strikeLonely(name, grown)) continue;
        anyOpen = true;
        for (const NameIndex neighbour : coexistence_.neighbours(name)) isOpen[neighbour] = true;
      }
    }
  }

  bool strikeLonely(NameIndex name, VersionSet& grown) const {
    bool anyStruck = false;
    for (VersionIndex version = space_.names[name].first; version < space_.names[name].end;
         ++version) {
      if (!grown.contains(version) || !isLonely(version, grown)) continue;
      grown.erase(version);
      anyStruck = true;
    }
    return anyStruck;
  }

  bool isLonely(VersionIndex version, VersionSet& grown) const {
    const auto& neighbours = coexistence_.neighbours(space_.versions[version].name);
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
      const VersionBits* row = coexistence_.row(version, i);
      const VersionBits* present = grown.of(neighbours[i]);
      const std::size_t words = coexistence_.words(neighbours[i]);
      VersionBits common = 0;
      for (std::size_t word = 0; word < words; ++word) common |= row[word] & present[word];
      if (common == 0) return true;
    }
    return false;
  }

  void measureRetreats(const SearchSpace::Name& name) {
    std::vector<VersionIndex> byDistance;
    for (VersionIndex version = name.first; version < name.end; ++version) {
      if (distances_[version] != unreached) byDistance.push_back(version);
    }
    std::sort(byDistance.begin(), byDistance.end(), [this](VersionIndex left, VersionIndex right) {
      return distances_[left] < distances_[right];
    });
    for (const VersionIndex version : byDistance) {
      for (const SearchSpace::Move& move : space_.versions[version].moves) {
        const std::uint64_t weight = hopWeight(move.expensive);
        if (distances_[move.target] == distances_[version] + weight) {
          offerRetreat(move.target, weight, outlooks_[version].retreat);
        }
      }
    }
  }

  void offerRetreat(VersionIndex version, std::uint64_t weight,
                    const std::vector<std::uint64_t>& rest) {
    std::vector<std::uint64_t> offered{weight};
    offered.insert(offered.end(), rest.begin(), rest.end());
    std::vector<std::uint64_t>& best = outlooks_[version].retreat;
    if (best < offered) best = std::move(offered);
  }

  const SearchSpace& space_;
  const Coexistence& coexistence_;
  std::vector<Outlook> outlooks_;
  std::vector<std::uint64_t> distances_;
  VersionSet starts_;
};

}  // namespace

std::vector<Outlook> computeOutlooks(const SearchSpace& space, const Coexistence& coexistence,
                                     const std::vector<VersionSelection>& sources) {
  return OutlookComputation(space, coexistence, sources).run();
}

}  // namespace tarn::evolution::pathfinder
