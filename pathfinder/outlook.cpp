#include "pathfinder/outlook.hpp"

#include <algorithm>
#include <iterator>
#include <limits>
#include <span>
#include <utility>

#include "pathfinder/step_weight.hpp"

namespace tarn::evolution::pathfinder {

namespace {

constexpr std::uint64_t unreached = std::numeric_limits<std::uint64_t>::max();

/// Where each version's bit stands in a set: each name's versions in words of their own.
struct SetLayout {
  SetLayout(const SearchSpace& space, const Coexistence& coexistence) {
    places.reserve(space.versions.size());
    starts.reserve(space.names.size());
    for (NameIndex name = 0; name < space.names.size(); ++name) {
      starts.push_back(words);
      for (std::size_t rank = 0; rank < space.names[name].end - space.names[name].first; ++rank) {
        places.push_back({words + rank / 64, VersionBits{1} << (rank % 64)});
      }
      words += coexistence.words(name);
    }
  }

  struct Place {
    std::size_t word;
    VersionBits mask;
  };

  std::size_t words = 0;
  std::vector<Place> places;        // by version
  std::vector<std::size_t> starts;  // by name
};

/// A set of versions of all names.
class VersionSet {
 public:
  explicit VersionSet(const SetLayout& layout) : layout_(&layout), bits_(layout.words) {}

  const VersionBits* of(NameIndex name) const { return &bits_[layout_->starts[name]]; }

  bool contains(VersionIndex version) const {
    const SetLayout::Place& place = layout_->places[version];
    return (bits_[place.word] & place.mask) != 0;
  }
  /// Whether it is new.
  bool insert(VersionIndex version) {
    const SetLayout::Place& place = layout_->places[version];
    const bool isNew = (bits_[place.word] & place.mask) == 0;
    bits_[place.word] |= place.mask;
    return isNew;
  }
  void erase(VersionIndex version) {
    const SetLayout::Place& place = layout_->places[version];
    bits_[place.word] &= ~place.mask;
  }

 private:
  const SetLayout* layout_;
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
        layout_(space, coexistence),
        starts_(layout_) {
    for (const VersionSelection& source : sources) {
      for (const VersionIndex version : source) starts_.insert(version);
    }
  }

  Outlooks run() {
    for (const SearchSpace::Name& name : space_.names) measureDistances(name);
    measureArrivals();
    for (const SearchSpace::Name& name : space_.names) measureRetreats(name);
    return std::move(outlooks_);
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

  /// Dijkstra's algorithm, over the versions of one name.
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

  /// Level by level, one for each step with an ordinary hop: what can be held after that many.
  void measureArrivals() {
    VersionSet held = starts_;
    std::vector<VersionIndex> added;
    for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
      if (starts_.contains(version)) added.push_back(version);
    }
    std::vector<VersionIndex> struck;
    std::vector<VersionIndex> fresh;
    for (std::uint32_t level = 0; !added.empty(); ++level) {
      growWithoutOrdinaryHops(held, added);
      strikeLonely(held, added);
      // What had no partner yet may have one after another step.
      struck.clear();
      std::erase_if(added, [&](VersionIndex version) {
        if (held.contains(version)) return false;
        struck.push_back(version);
        return true;
      });
      for (const VersionIndex version : added) noteArrival(version, level);
      fresh.swap(added);
      growByOrdinaryHops(held, fresh, struck, added);
    }
  }

  void noteArrival(VersionIndex version, std::uint32_t level) {
    Outlook& outlook = outlooks_[version];
    outlook.arrives = true;
    outlook.distance = distances_[version];
    const std::uint64_t ordinaryHops = ordinaryPart(outlook.distance);
    outlook.ordinarySteps = std::max(level, static_cast<std::uint32_t>(ordinaryHops));
  }

  /// Adds, and lists, what the versions added last lead to, and again what was struck; nothing when
  /// nothing new has come that could make a difference.
  void growByOrdinaryHops(VersionSet& held, const std::vector<VersionIndex>& fresh,
                          const std::vector<VersionIndex>& struck,
                          std::vector<VersionIndex>& added) const {
    added.clear();
    if (fresh.empty()) return;
    const auto add = [&](VersionIndex version) {
      if (held.insert(version)) added.push_back(version);
    };
    for (const VersionIndex version : fresh) {
      for (const SearchSpace::Move& move : space_.versions[version].moves) {
        if (!move.expensive) add(move.target);
      }
    }
    for (const VersionIndex version : struck) add(version);
  }

  /// Adds, and lists, what the listed versions lead to by expensive hops and as entries.
  void growWithoutOrdinaryHops(VersionSet& held, std::vector<VersionIndex>& added) const {
    const auto add = [&](VersionIndex version) {
      if (held.insert(version)) added.push_back(version);
    };
    // The list grows on the way.
    for (std::size_t i = 0; i < added.size(); ++i) {  // NOLINT(modernize-loop-convert)
      for (const SearchSpace::Move& move : space_.versions[added[i]].moves) {
        if (move.expensive) add(move.target);
      }
      if (!space_.isAbsent(added[i])) continue;
      const SearchSpace::Name& name = space_.names[space_.versions[added[i]].name];
      for (VersionIndex version = name.first; version < name.end; ++version) {
        if (space_.versions[version].isEntry) add(version);
      }
    }
  }

  /// Strikes versions beside which no version of some other name can stand, until there is none.
  /// Only those that were added can be such: what was there before has its partners.
  void strikeLonely(VersionSet& held, const std::vector<VersionIndex>& added) {
    checked_.clear();
    std::copy_if(added.begin(), added.end(), std::back_inserter(checked_),
                 [&](VersionIndex version) {
                   return !coexistence_.neighbours(space_.versions[version].name).empty();
                 });
    std::sort(checked_.begin(), checked_.end());
    const auto groups = groupedByName(checked_);
    std::vector<bool> isOpen(groups.empty() ? 0 : space_.names.size(), true);
    for (bool anyStruck = true; std::exchange(anyStruck, false);) {
      for (const std::span<const VersionIndex> group : groups) {
        const NameIndex name = space_.versions[group.front()].name;
        if (!isOpen[name]) continue;
        isOpen[name] = false;
        if (!strikeLonely(group, held)) continue;
        anyStruck = true;
        for (const NameIndex neighbour : coexistence_.neighbours(name)) isOpen[neighbour] = true;
      }
    }
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

  bool strikeLonely(std::span<const VersionIndex> added, VersionSet& held) const {
    bool anyStruck = false;
    for (const VersionIndex version : added) {
      if (!held.contains(version) || !isLonely(version, held)) continue;
      held.erase(version);
      anyStruck = true;
    }
    return anyStruck;
  }

  bool isLonely(VersionIndex version, const VersionSet& held) const {
    const auto& neighbours = coexistence_.neighbours(space_.versions[version].name);
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
      const VersionBits* row = coexistence_.row(version, i);
      const VersionBits* present = held.of(neighbours[i]);
      const std::size_t words = coexistence_.words(neighbours[i]);
      VersionBits common = 0;
      for (std::size_t word = 0; word < words; ++word) common |= row[word] & present[word];
      if (common == 0) return true;
    }
    return false;
  }

  void measureRetreats(const SearchSpace::Name& name) {
    byDistance_.clear();
    for (VersionIndex version = name.first; version < name.end; ++version) {
      if (distances_[version] != unreached) byDistance_.push_back(version);
    }
    std::sort(byDistance_.begin(), byDistance_.end(),
              [this](VersionIndex left, VersionIndex right) {
                return distances_[left] < distances_[right];
              });
    for (const VersionIndex version : byDistance_) {
      for (const SearchSpace::Move& move : space_.versions[version].moves) {
        const std::uint64_t weight = hopWeight(move.expensive);
        if (distances_[move.target] == distances_[version] + weight) {
          offerRetreat(move.target, weight, version);
        }
      }
    }
  }

  void offerRetreat(VersionIndex version, std::uint64_t hop, VersionIndex to) {
    Outlook& outlook = outlooks_[version];
    const bool isHeavier = hop != outlook.retreatHop
                               ? hop > outlook.retreatHop
                               : hasHeavierRetreat(outlooks_, to, outlook.retreatTo);
    if (!isHeavier) return;
    outlook.retreatHop = hop;
    outlook.retreatTo = to;
    outlook.retreatLength = outlooks_[to].retreatLength + 1;
  }

  const SearchSpace& space_;
  const Coexistence& coexistence_;
  Outlooks outlooks_;
  std::vector<std::uint64_t> distances_;
  const SetLayout layout_;
  VersionSet starts_;

  // Kept for their memory.
  std::vector<Waiting> waiting_;
  std::vector<VersionIndex> byDistance_;
  std::vector<VersionIndex> checked_;
};

}  // namespace

bool hasHeavierRetreat(const Outlooks& outlooks, VersionIndex left, VersionIndex right) {
  while (outlooks[left].retreatHop == outlooks[right].retreatHop) {
    if (outlooks[left].retreatHop == 0) return false;
    left = outlooks[left].retreatTo;
    right = outlooks[right].retreatTo;
  }
  return outlooks[left].retreatHop > outlooks[right].retreatHop;
}

Outlooks computeOutlooks(const SearchSpace& space, const Coexistence& coexistence,
                         const std::vector<VersionSelection>& sources) {
  return OutlookComputation(space, coexistence, sources).run();
}

}  // namespace tarn::evolution::pathfinder
