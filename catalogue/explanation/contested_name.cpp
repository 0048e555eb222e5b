// Of each candidate the nearest that is asked of the name is told. As long as some version suits
// all that is told, one looks for a party that cannot hold that version, and for what excludes it
// in each of the party's candidates, and tells this, too.

#include "catalogue/explanation/contested_name.hpp"

#include <algorithm>
#include <set>
#include <unordered_set>
#include <utility>

#include "catalogue/explanation/candidate_requirements.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::LinkedMetamodel;
using pathfinder::VersionId;

namespace {

using Linked = std::shared_ptr<LinkedMetamodel>;
using Versions = std::unordered_set<VersionId>;

/// Whether the parties, each of which always holds the name, have no version in common under it.
bool disagreeOn(const std::vector<Candidates>& parties, const std::u16string& name) {
  Versions common;
  for (const Candidates& party : parties) {
    Versions held;
    for (const Linked& candidate : party.linked) {
      const LinkedMetamodel* const linked = heldBy(candidate, name);
      if (linked == nullptr) return false;
      if (&party == &parties.front() || common.contains(linked->version)) {
        held.insert(linked->version);
      }
    }
    common = std::move(held);
  }
  return common.empty();
}

std::set<std::u16string> namesHeldBy(const Candidates& party) {
  std::set<std::u16string> names;
  for (const Linked& candidate : party.linked) {
    names.insert(candidate->name);
    for (const auto& [name, linked] : candidate->linkedMetamodels) names.insert(name);
  }
  return names;
}

/// What parties ask of one name.
class Contest {
 public:
  Contest(pathfinder::VersionRepository& repository, const std::vector<Candidates>& parties,
          std::u16string name)
      : repository_(&repository), name_(std::move(name)) {
    for (const Candidates& party : parties) addParty(party);
  }

  /// How long the chains to the name are: the shorter, the plainer the explanation.
  std::size_t remoteness() const {
    std::size_t result = 0;
    for (const std::vector<Way>& party : parties_) {
      std::size_t shortest = ~std::size_t{0};
      for (const Way& way : party) {
        shortest = std::min(shortest, way.asked.front().requirement.chain.size());
      }
      result += shortest;
    }
    return result;
  }

  /// Tells as much as excludes every version; none when that cannot be.
  std::optional<ContestedName> settle() {
    for (const VersionId& version : versionsInQuestion()) {
      const bool suitsAll = std::all_of(parties_.begin(), parties_.end(),
                                        [&](auto& party) { return suits(version, party); });
      if (!suitsAll) continue;
      const bool isExcluded = std::any_of(parties_.begin(), parties_.end(),
                                          [&](auto& party) { return exclude(version, party); });
      if (!isExcluded) return std::nullopt;
    }
    return ContestedName{name_, told()};
  }

 private:
  struct Asked {
    Requirement requirement;
    bool isTold = false;
    std::optional<Versions> admitted = std::nullopt;  ///< once it was looked up
  };

  /// One candidate of a party.
  struct Way {
    Linked candidate;
    std::vector<Asked> asked;
  };

  void addParty(const Candidates& party) {
    auto& ways = parties_.emplace_back();
    for (const Linked& candidate : party.linked) {
      Way& way = ways.emplace_back(Way{candidate, {}});
      for (Requirement& requirement : requirementsOf(candidate, name_)) {
        way.asked.push_back({std::move(requirement)});
      }
      way.asked.front().isTold = true;
    }
  }

  /// What the first party's requirements admit: nothing else can suit all.
  std::vector<VersionId> versionsInQuestion() const {
    std::vector<VersionId> result;
    Versions known;
    for (const auto& [candidate, asked] : parties_.front()) {
      for (VersionId& version : admittedBy(*repository_, asked.front().requirement, candidate)) {
        if (known.insert(version).second) result.push_back(std::move(version));
      }
    }
    return result;
  }

  bool admits(Asked& asked, const Way& way, const VersionId& version) {
    if (!asked.admitted) {
      const auto found = admittedBy(*repository_, asked.requirement, way.candidate);
      asked.admitted.emplace(found.begin(), found.end());
    }
    return asked.admitted->contains(version);
  }

  bool suits(const VersionId& version, std::vector<Way>& party) {
    return std::any_of(party.begin(), party.end(), [&](Way& way) { return suits(version, way); });
  }

  bool suits(const VersionId& version, Way& way) {
    return std::all_of(way.asked.begin(), way.asked.end(),
                       [&](Asked& asked) { return !asked.isTold || admits(asked, way, version); });
  }

  /// Tells why the party cannot hold the version; false when nothing that it asks of it excludes
  /// it.
  bool exclude(const VersionId& version, std::vector<Way>& party) {
    std::vector<Asked*> excluding;
    for (Way& way : party) {
      if (!suits(version, way)) continue;
      const auto first = std::find_if(way.asked.begin(), way.asked.end(),
                                      [&](Asked& asked) { return !admits(asked, way, version); });
      if (first == way.asked.end()) return false;
      excluding.push_back(&*first);
    }
    for (Asked* asked : excluding) asked->isTold = true;
    return true;
  }

  std::vector<Requirement> told() const {
    std::vector<Requirement> result;
    for (const std::vector<Way>& party : parties_) {
      std::vector<Requirement> ofParty;
      for (const Way& way : party) {
        for (const Asked& asked : way.asked) {
          if (asked.isTold) addRequirement(asked.requirement, ofParty);
        }
      }
      result.insert(result.end(), ofParty.begin(), ofParty.end());
    }
    return result;
  }

  pathfinder::VersionRepository* repository_;
  std::u16string name_;
  std::vector<std::vector<Way>> parties_;
};

}  // namespace

std::optional<ContestedName> findContested(pathfinder::VersionRepository& repository,
                                           const std::vector<Candidates>& parties) {
  std::vector<Contest> contests;
  for (const std::u16string& name : namesHeldBy(parties.front())) {
    if (disagreeOn(parties, name)) contests.emplace_back(repository, parties, name);
  }
  std::stable_sort(contests.begin(), contests.end(), [](const Contest& left, const Contest& right) {
    return left.remoteness() < right.remoteness();
  });
  for (Contest& contest : contests) {
    if (auto settled = contest.settle()) return settled;
  }
  return std::nullopt;
}

}  // namespace tarn::evolution::catalogue
