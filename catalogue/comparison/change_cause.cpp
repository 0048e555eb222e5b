// The smallest set of differences that explains an answer. A set explains it if the worse
// catalogue, with these differences taken over from the better one, answers as well as the better
// one. That is asked of the path finder for every set, so that no assumption about what differences
// do to one another is needed; only which sets are tried is guided: what the better path passes is
// likely to suffice, a part of what suffices is likely to, and sets smaller than the one found are
// gone through in the order of their size, as far as the limits allow.
#include "catalogue/comparison/change_cause.hpp"

#include <algorithm>
#include <numeric>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/comparison/asked_catalogue.hpp"
#include "catalogue/model/row_key.hpp"
#include "catalogue/model/same_rows.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;

namespace {

using Keys = std::unordered_set<std::u16string>;
using Places = std::vector<std::size_t>;  // of differences, ascending

/// Catalogues between a worse and a better one. Differences are numbered, versions first. A hop of
/// a version that only one of them has is no difference of its own: it goes with the version.
class Mixture {
 public:
  Mixture(const CatalogueContent& worse, const CatalogueContent& better)
      : worse_(worse), better_(better), difference_(differenceBetween(worse, better)) {
    std::erase_if(difference_.versions, [](const VersionDifference& each) {
      return each.former && each.present && isSameBesideNotes(*each.former, *each.present);
    });
    findEndsOfOne();
    const Keys worseVersions = versionsOf(worse);
    const Keys betterVersions = versionsOf(better);
    std::erase_if(difference_.hops, [&](const HopDifference& each) {
      if (each.former && each.present) return each.former->expensive == each.present->expensive;
      return !areIn(worseVersions, each.any()) || !areIn(betterVersions, each.any());
    });
    for (const Hop& hop : worse.hops) worseHops_.insert(keyOf(hop));
    for (const auto& hop : difference_.hops) differentHops_.insert(keyOf(hop.any()));
  }

  std::size_t size() const { return difference_.versions.size() + difference_.hops.size(); }

  /// The differences whose version or hop in the better catalogue is among these.
  Places among(const Keys& keys) const {
    Places result;
    for (std::size_t place = 0; place < size(); ++place) {
      if (keys.contains(keyAt(place))) result.push_back(place);
    }
    return result;
  }

  /// The worse catalogue with these differences taken over; none when that is unsound.
  std::optional<Catalogue> with(const Places& places) const {
    CatalogueContent content;
    std::unordered_map<std::u16string, const VersionDifference*> versions;
    Keys hops;
    for (const std::size_t place : places) {
      if (place < difference_.versions.size()) {
        versions.emplace(keyAt(place), &difference_.versions[place]);
      } else {
        hops.insert(keyAt(place));
      }
    }
    for (const CatalogueMetamodel& metamodel : worse_.metamodels) {
      if (!versions.contains(keyOf(metamodel))) content.metamodels.push_back(metamodel);
    }
    for (const auto& [key, version] : versions) {
      if (version->present) content.metamodels.push_back(*version->present);
    }
    addHops(hops, content);
    try {
      return Catalogue(std::move(content));
    } catch (const CatalogueError&) {
      return std::nullopt;
    }
  }

  /// The differences as they are between the former and the present catalogue.
  ContentDifference told(const Places& places) const {
    ContentDifference result;
    for (const std::size_t place : places) {
      const std::size_t versions = difference_.versions.size();
      if (place < versions) {
        result.versions.push_back(difference_.versions[place]);
      } else {
        result.hops.push_back(difference_.hops[place - versions]);
      }
    }
    return result;
  }

 private:
  /// The versions that a hop means in the catalogue that has it.
  struct Ends {
    std::u16string from;
    std::u16string to;
  };

  static Keys versionsOf(const CatalogueContent& content) {
    Keys keys;
    for (const CatalogueMetamodel& metamodel : content.metamodels) keys.insert(keyOf(metamodel));
    return keys;
  }

  void findEndsOfOne() {
    const CatalogueIndex worseIndex(worse_.metamodels, {});
    const CatalogueIndex betterIndex(better_.metamodels, {});
    for (const HopDifference& each : difference_.hops) {
      if (each.former && each.present) continue;
      const auto& index = each.former ? worseIndex : betterIndex;
      const auto& metamodels = (each.former ? worse_ : better_).metamodels;
      const Hop& hop = each.any();
      const auto from = index.metamodelOf(hop.name, hop.from);
      const auto to = index.metamodelOf(hop.name, hop.to);
      endsOfOne_.emplace(keyOf(hop),
                         Ends{keyOf(metamodels[from.value()]), keyOf(metamodels[to.value()])});
    }
  }

  /// Whether the versions that a hop means are there, for one that only one catalogue has:
  /// elsewhere its ends may mean others.
  bool areIn(const Keys& versions, const Hop& hop) const {
    const Ends& ends = endsOfOne_.at(keyOf(hop));
    return versions.contains(ends.from) && versions.contains(ends.to);
  }

  static bool hasEnds(const CatalogueIndex& index, const Hop& hop) {
    return !index.metamodelsAt(hop.name, hop.from).empty() &&
           !index.metamodelsAt(hop.name, hop.to).empty();
  }

  std::u16string keyAt(std::size_t place) const {
    const std::size_t versions = difference_.versions.size();
    return place < versions ? keyOf(difference_.versions[place].any())
                            : keyOf(difference_.hops[place - versions].any());
  }

  void addHops(const Keys& taken, CatalogueContent& content) const {
    const CatalogueIndex index(content.metamodels, {});
    const Keys versions = versionsOf(content);
    const auto fits = [&](const Hop& hop) {
      return endsOfOne_.contains(keyOf(hop)) ? areIn(versions, hop) : hasEnds(index, hop);
    };
    for (const Hop& hop : worse_.hops) {
      if (!taken.contains(keyOf(hop)) && fits(hop)) content.hops.push_back(hop);
    }
    for (const Hop& hop : better_.hops) {
      const std::u16string key = keyOf(hop);
      const bool isTaken =
          differentHops_.contains(key) ? taken.contains(key) : !worseHops_.contains(key);
      if (isTaken && fits(hop)) content.hops.push_back(hop);
    }
  }

  const CatalogueContent& worse_;
  const CatalogueContent& better_;
  ContentDifference difference_;  // from the worse to the better
  std::unordered_map<std::u16string, Ends> endsOfOne_;
  Keys worseHops_;
  Keys differentHops_;
};

class CauseSearch {
 public:
  CauseSearch(const Mixture& mixture, const Question& question, std::uint64_t weight,
              const CauseLimits& limits)
      : mixture_(mixture),
        question_(question),
        weight_(weight),
        limits_(limits),
        end_(std::chrono::steady_clock::now() + limits.time) {
    if (limits.search.deadline) end_ = std::min(end_, *limits.search.deadline);
  }

  ChangeCause run(const Keys& passed) {
    Places all(mixture_.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    Places found = mixture_.among(passed);
    if (!suffices(found)) found = all;
    if (found.size() == all.size() && !suffices(found)) return {mixture_.told(all)};
    reduce(found);
    const bool isSmallest = findSmaller(all, found);
    return {mixture_.told(found), isSmallest ? CauseProof::Smallest : CauseProof::Sufficient};
  }

 private:
  bool isOver() const {
    return asked_ >= limits_.questions || std::chrono::steady_clock::now() >= end_;
  }

  bool suffices(const Places& places) {
    const auto known = known_.find(textOf(places));
    if (known != known_.end()) return known->second;
    auto catalogue = mixture_.with(places);
    bool result = false;
    if (catalogue) {
      ++asked_;
      pathfinder::SearchLimits search = limits_.search;
      search.deadline = end_;
      const AskedAnswer answer =
          AskedCatalogue(*std::move(catalogue)).ask(question_, search).answer;
      if (answer.kind == AskedAnswer::Kind::Open) isDecided_ = false;
      result = answer.isFound() && answer.weight <= weight_;
    }
    return known_[textOf(places)] = result;
  }

  static std::u16string textOf(const Places& places) {
    std::u16string text;
    for (const std::size_t place : places) {
      text += {static_cast<char16_t>(place >> 16), static_cast<char16_t>(place)};
    }
    return text;
  }

  /// Leaves parts out, halves first, as long as the rest suffices.
  void reduce(Places& found) {
    for (std::size_t part = (found.size() + 1) / 2; part > 0;
         part = part == 1 ? 0 : (part + 1) / 2) {
      for (std::size_t begin = 0; begin < found.size() && !isOver();) {
        Places rest(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(begin));
        rest.insert(
            rest.end(),
            found.begin() + static_cast<std::ptrdiff_t>(std::min(begin + part, found.size())),
            found.end());
        if (suffices(rest)) {
          found = rest;
        } else {
          begin += part;
        }
      }
    }
  }

  /// Tries all sets that are smaller than `found`, which becomes the first that suffices; whether
  /// none is smaller then.
  bool findSmaller(const Places& all, Places& found) {
    for (std::size_t size = 0; size < found.size(); ++size) {
      std::vector<bool> isTaken(all.size(), false);
      std::fill(isTaken.begin(), isTaken.begin() + static_cast<std::ptrdiff_t>(size), true);
      do {
        if (isOver()) return false;
        Places places;
        for (const std::size_t place : all) {
          if (isTaken[place]) places.push_back(place);
        }
        if (suffices(places)) {
          found = places;
          return isDecided_;
        }
      } while (std::prev_permutation(isTaken.begin(), isTaken.end()));
    }
    return isDecided_;
  }

  const Mixture& mixture_;
  const Question& question_;
  const std::uint64_t weight_;
  const CauseLimits& limits_;
  std::chrono::steady_clock::time_point end_;
  std::size_t asked_ = 0;
  bool isDecided_ = true;  // whether no question was left open
  std::unordered_map<std::u16string, bool> known_;
};

/// The versions and hops that a path passes, as the catalogue has them.
Keys passedBy(const std::vector<pathfinder::BaselineHop>& path, const CatalogueContent& content) {
  const CatalogueIndex index(content.metamodels, {});
  Keys keys;
  const auto meant = [&](const std::u16string& name, const pathfinder::VersionId& version) {
    return index.scale(name).meant(version);
  };
  for (const auto& step : path) {
    for (const auto* baseline : {&step.from, &step.to}) {
      for (const auto& [name, linked] : baseline->metamodels) {
        keys.insert(keyOf(name, meant(name, linked->version)));
      }
    }
    for (const auto& [name, hop] : step.hops) {
      keys.insert(keyOf(index.scale(name).meant(hop)));
    }
  }
  return keys;
}

}  // namespace

ChangeCause findCause(const CatalogueContent& worse, const CatalogueContent& better,
                      const Question& question, const std::vector<pathfinder::BaselineHop>& path,
                      std::uint64_t weight, const CauseLimits& limits) {
  const Mixture mixture(worse, better);
  return CauseSearch(mixture, question, weight, limits).run(passedBy(path, better));
}

}  // namespace tarn::evolution::catalogue
