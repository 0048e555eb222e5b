// Versions that may be held are a fixpoint: those of the space, and what versions met before admit.
//
// Whether some versions can stand together is asked of a formula with a literal for each version:
// one version of each name, and beside each version one that it admits of each name that it depends
// on or requires. The versions that a refutation needs are a conflict, made irreducible by leaving
// out one after the other.
//
// Most conflicts are of two versions that leave nothing to some third name. They are found all at
// once: what a version leaves to each name that it needs, directly or by way of others, is narrowed
// by what all versions that are left of a name admit (arc consistency, in the direction of
// dependencies).

#include "pathfinder/learning/free_versions.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "pathfinder/learning/irreducible_assumptions.hpp"
#include "pathfinder/limits/search_watch.hpp"

namespace tarn::evolution::pathfinder {

namespace {

bool meet(const std::vector<bool>& left, const std::vector<bool>& right) {
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (left[i] && right[i]) return true;
  }
  return false;
}

}  // namespace

FreeVersions::FreeVersions(SelectionHost& host, const DependencySpace& dependencies)
    : space_(*dependencies.space) {
  for (const SearchSpace::Version& version : space_.versions) versionOf(*version.descriptor);
  // Versions are added on the way.
  for (FreeVersion version = 0; version < versions_.size(); ++version) addNeeds(host, version);
  formulate();
}

FreeVersions::FreeName FreeVersions::nameOf(const std::u16string& text) {
  const auto [entry, isNew] = names_.emplace(text, static_cast<FreeName>(versionsOf_.size()));
  if (isNew) versionsOf_.emplace_back();
  return entry->second;
}

FreeVersions::FreeVersion FreeVersions::versionOf(const Metamodel& descriptor) {
  const auto next = static_cast<FreeVersion>(versions_.size());
  const auto [known, isNew] = known_.try_emplace(descriptor, next);
  if (isNew) {
    const FreeName name = nameOf(descriptor.name);
    versions_.push_back({name, versionsOf_[name].size(), &known->first});
    versionsOf_[name].push_back(next);
  }
  return known->second;
}

void FreeVersions::addNeeds(SelectionHost& host, FreeVersion version) {
  checkpoint();
  std::vector<Metamodel> candidates;
  std::vector<Need> needs;
  for (const Dependency& dependency : versions_[version].descriptor->dependencies) {
    candidates.clear();
    host.findMetamodels(dependency.name, dependency.range, candidates);
    Need& need = needs.emplace_back(Need{nameOf(dependency.name)});
    for (const Metamodel& candidate : candidates) {
      if (candidate.name != dependency.name) throw NotForDependencies();
      need.admitted.push_back(versionOf(candidate));
    }
  }
  std::vector<PeerRequirement> required;
  host.findRequirements(*versions_[version].descriptor, required);
  for (const PeerRequirement& requirement : required) {
    candidates.clear();
    host.findMetamodels(requirement.name, requirement.range, candidates);
    Need& need = requirement.isOptional ? optional_.emplace_back(version, Need{}).second
                                        : needs.emplace_back();
    need.name = nameOf(requirement.name);
    for (const Metamodel& candidate : candidates) {
      if (candidate.name != requirement.name) throw NotForDependencies();
      need.admitted.push_back(versionOf(candidate));
    }
  }
  versions_[version].needs = std::move(needs);
}

void FreeVersions::formulate() {
  for (Version& version : versions_) version.held = solver_.newVariable();
  for (const auto& versions : versionsOf_) {
    std::vector<Literal> held;
    held.reserve(versions.size());
    for (const FreeVersion version : versions) held.push_back(versions_[version].held);
    solver_.addAtMostOne(std::move(held));
  }
  for (const Version& version : versions_) {
    for (const Need& need : version.needs) {
      std::vector<Literal> clause{-version.held};
      for (const FreeVersion admitted : need.admitted) clause.push_back(versions_[admitted].held);
      solver_.addClause(clause);
    }
  }
  for (const auto& [version, need] : optional_) {
    for (const FreeVersion other : versionsOf_[need.name]) {
      const auto& admitted = need.admitted;
      if (std::find(admitted.begin(), admitted.end(), other) != admitted.end()) continue;
      solver_.addClause({-versions_[version].held, -versions_[other].held});
    }
  }
}

std::vector<VersionIndex> FreeVersions::findConflict(std::span<const VersionIndex> versions) {
  std::vector<Literal> held;
  for (const VersionIndex version : versions) held.push_back(versions_[version].held);
  const auto places = findIrreducible(solver_, {}, held);
  if (!places) return {};
  std::vector<VersionIndex> conflict;
  for (const std::size_t place : *places) conflict.push_back(versions[place]);
  return conflict;
}

FreeVersions::Possible FreeVersions::possibleBeside(VersionIndex version) const {
  const FreeName name = versions_[version].name;
  Possible possible;
  std::vector<bool>& own = possible[name];
  own.resize(versionsOf_[name].size());
  own[versions_[version].rank] = true;
  std::vector<FreeName> changed{name};
  while (!changed.empty()) {
    const FreeName next = changed.back();
    changed.pop_back();
    if (!narrow(next, possible, changed)) break;
  }
  return possible;
}

/// Narrows what is left to the names that a name needs; false when nothing is left to one of them.
bool FreeVersions::narrow(FreeName name, Possible& possible, std::vector<FreeName>& changed) const {
  std::set<FreeName> needed;
  for (const FreeVersion version : versionsOf_[name]) {
    if (!possible.at(name)[versions_[version].rank]) continue;
    for (const Need& need : versions_[version].needs) needed.insert(need.name);
  }
  for (const FreeName other : needed) {
    std::vector<bool> admitted = admittedByAll(name, other, possible);
    if (admitted.empty()) continue;
    const auto known = possible.find(other);
    if (known != possible.end()) {
      for (std::size_t i = 0; i < admitted.size(); ++i) {
        admitted[i] = admitted[i] && known->second[i];
      }
      if (admitted == known->second) continue;
    }
    possible[other] = admitted;
    if (std::find(admitted.begin(), admitted.end(), true) == admitted.end()) return false;
    changed.push_back(other);
  }
  return true;
}

/// What the versions left of a name admit of a name that all of them need; empty when one does not
/// need it.
std::vector<bool> FreeVersions::admittedByAll(FreeName name, FreeName needed,
                                              const Possible& possible) const {
  std::vector<bool> result(versionsOf_[needed].size());
  for (const FreeVersion version : versionsOf_[name]) {
    if (!possible.at(name)[versions_[version].rank]) continue;
    const auto& needs = versions_[version].needs;
    const auto need = std::find_if(needs.begin(), needs.end(),
                                   [&](const Need& one) { return one.name == needed; });
    if (need == needs.end()) return {};
    for (const FreeVersion admitted : need->admitted) result[versions_[admitted].rank] = true;
  }
  return result;
}

std::vector<Compatibility::Requirement> FreeVersions::requirements() const {
  struct Claim {
    VersionIndex version;
    std::vector<bool> possible;
  };
  std::vector<std::vector<Claim>> claims(versionsOf_.size());
  for (VersionIndex version = 0; version < space_.versions.size(); ++version) {
    checkpoint();
    for (auto& [name, possible] : possibleBeside(version)) {
      claims[name].push_back({version, std::move(possible)});
    }
  }
  std::map<std::pair<VersionIndex, NameIndex>, std::set<VersionIndex>> excluded;
  for (const std::vector<Claim>& onName : claims) {
    for (const Claim& left : onName) {
      checkpoint();
      for (const Claim& right : onName) {
        const NameIndex other = space_.versions[right.version].name;
        if (space_.versions[left.version].name >= other) continue;
        if (meet(left.possible, right.possible)) continue;
        excluded[{left.version, other}].insert(right.version);
      }
    }
  }
  std::vector<Compatibility::Requirement> result;
  for (const auto& [pair, versions] : excluded) {
    Compatibility::Requirement& requirement = result.emplace_back();
    requirement.version = pair.first;
    requirement.needed = pair.second;
    const SearchSpace::Name& name = space_.names[pair.second];
    for (VersionIndex version = name.first; version < name.end; ++version) {
      if (!versions.contains(version)) requirement.admitted.push_back(version);
    }
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
