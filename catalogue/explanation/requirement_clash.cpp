#include "catalogue/explanation/requirement_clash.hpp"

#include <algorithm>

namespace tarn::evolution::catalogue {

using pathfinder::Metamodel;
using pathfinder::PeerRequirement;

namespace {

bool admits(pathfinder::VersionRepository& repository, const PeerRequirement& requirement,
            const Metamodel& metamodel) {
  std::vector<Metamodel> admitted;
  repository.findMetamodels(requirement.name, requirement.range, admitted);
  return std::any_of(admitted.begin(), admitted.end(), [&](const Metamodel& candidate) {
    return candidate.version == metamodel.version;
  });
}

/// The first requirement of a metamodel on the other's name that excludes it.
std::optional<PeerRequirement> excluding(pathfinder::VersionRepository& repository,
                                         const Metamodel& metamodel, const Metamodel& other) {
  for (PeerRequirement& requirement : repository.getRequirements(metamodel)) {
    if (requirement.name != other.name || admits(repository, requirement, other)) continue;
    return std::move(requirement);
  }
  return std::nullopt;
}

Requirement needOf(const Metamodel& metamodel, const PeerRequirement& requirement) {
  return {{{metamodel.name, metamodel.version}}, requirement.name, requirement.range};
}

Requirement itself(const Metamodel& metamodel) {
  return {{{metamodel.name, metamodel.version}}, metamodel.name, std::nullopt};
}

Clash clashOver(const std::u16string& contested, const std::u16string& other) {
  return {{std::min(contested, other), std::max(contested, other)}, contested, {}};
}

/// The versions of one name are all excluded by the version, or exclude it.
std::optional<Clash> clashWith(LinkableRepository& repository, const Metamodel& version,
                               const std::vector<Metamodel>& others) {
  std::optional<Clash> needed;
  std::optional<Clash> needing;
  for (const Metamodel& other : others) {
    if (const auto own = excluding(repository, version, other)) {
      if (!needed) {
        needed = clashOver(other.name, version.name);
        needed->requirements.push_back(needOf(version, *own));
      }
      needed->requirements.push_back(itself(other));
    } else if (const auto its = excluding(repository, other, version)) {
      if (!needing) {
        needing = clashOver(version.name, other.name);
        needing->requirements.push_back(itself(version));
      }
      needing->requirements.push_back(needOf(other, *its));
    } else {
      return std::nullopt;
    }
  }
  return needed ? needed : needing;
}

}  // namespace

std::optional<Clash> findExcluded(pathfinder::VersionRepository& repository,
                                  const std::map<std::u16string, const Metamodel*>& held) {
  for (const auto& [name, metamodel] : held) {
    for (const auto& [otherName, other] : held) {
      if (name == otherName) continue;
      const auto requirement = excluding(repository, *metamodel, *other);
      if (!requirement) continue;
      Clash clash = clashOver(otherName, name);
      clash.requirements = {needOf(*metamodel, *requirement), itself(*other)};
      return clash;
    }
  }
  return std::nullopt;
}

std::optional<Clash> findRequirementClash(LinkableRepository& repository, const Metamodel& version,
                                          const std::vector<std::vector<Metamodel>>& others) {
  for (const std::vector<Metamodel>& ofName : others) {
    if (ofName.empty()) continue;
    if (auto clash = clashWith(repository, version, ofName)) return clash;
  }
  for (const PeerRequirement& requirement : repository.getRequirements(version)) {
    if (requirement.isOptional) continue;
    const auto mayBeHeld = [&](const Metamodel& other) {
      if (other.name == requirement.name) return true;
      const LinkedMetamodels* linked = repository.tryLink(other);
      return linked != nullptr &&
             std::any_of(linked->begin(), linked->end(), [&](const auto& each) {
               return each->linkedMetamodels.contains(requirement.name);
             });
    };
    const bool isMissing =
        !mayBeHeld(version) && std::none_of(others.begin(), others.end(), [&](const auto& ofName) {
          return std::any_of(ofName.begin(), ofName.end(), mayBeHeld);
        });
    if (!isMissing) continue;
    return Clash{{version.name}, requirement.name, {needOf(version, requirement)}};
  }
  return std::nullopt;
}

}  // namespace tarn::evolution::catalogue
