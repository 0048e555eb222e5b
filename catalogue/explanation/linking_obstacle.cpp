#include "catalogue/explanation/linking_obstacle.hpp"

#include <set>

#include "catalogue/explanation/clash_search.hpp"
#include "catalogue/explanation/suggestions.hpp"
#include "catalogue/model/admitted_versions.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::Metamodel;

namespace {

std::vector<Metamodel> candidatesFor(Inquiry& inquiry, const Dependency& dependency) {
  return listAdmitted(inquiry.repository(), dependency.name, dependency.range);
}

/// Linking fails as soon as one candidate of a dependency cannot be linked.
std::optional<Metamodel> findUnlinkableCandidate(Inquiry& inquiry, const Metamodel& metamodel) {
  for (const Dependency& dependency : metamodel.dependencies) {
    for (const Metamodel& candidate : candidatesFor(inquiry, dependency)) {
      if (inquiry.repository().tryLink(candidate) == nullptr) return candidate;
    }
  }
  return std::nullopt;
}

/// The dependencies that are chosen for: of several with one name only the first counts.
std::vector<Dependency> decisiveDependencies(const Metamodel& metamodel) {
  std::vector<Dependency> result;
  std::set<std::u16string> names;
  for (const Dependency& dependency : metamodel.dependencies) {
    if (names.insert(dependency.name).second) result.push_back(dependency);
  }
  return result;
}

pathfinder::VersionId nearTo(const pathfinder::VersionRange& wanted) {
  const pathfinder::VersionRange range = piecesOf(wanted).front();
  if (const auto bounds = boundsOf(range)) return bounds->lower;
  return *findSingleVersion(range);
}

/// Says what a party of a clash between dependencies requires from their owner's point of view.
void prependOwner(const Metamodel& owner, Clash& clash) {
  for (auto& [chain, name, range, isOptional] : clash.requirements) {
    if (range) {
      chain.insert(chain.begin(), {owner.name, owner.version});
      continue;
    }
    for (const Dependency& dependency : decisiveDependencies(owner)) {
      if (dependency.name == name) range = dependency.range;
    }
    chain = {{owner.name, owner.version}};
  }
}

}  // namespace

Unlinkable explainUnlinkable(Inquiry& inquiry, const Metamodel& metamodel) {
  Unlinkable result;
  Metamodel owner = metamodel;
  result.chain.push_back({owner.name, owner.version});
  while (auto candidate = findUnlinkableCandidate(inquiry, owner)) {
    owner = *std::move(candidate);
    result.chain.push_back({owner.name, owner.version});
  }
  std::vector<Candidates> choices;
  for (const Dependency& dependency : decisiveDependencies(owner)) {
    Candidates choice{dependency.name, {}};
    for (const Metamodel& candidate : candidatesFor(inquiry, dependency)) {
      const LinkedMetamodels* linked = inquiry.repository().tryLink(candidate);
      choice.linked.insert(choice.linked.end(), linked->begin(), linked->end());
    }
    if (choice.linked.empty()) {
      result.unmet = dependency;
      result.nearestVersions = nearestVersions(nearTo(dependency.range),
                                               inquiry.content().listMetamodels(dependency.name));
      return result;
    }
    choices.push_back(std::move(choice));
  }
  result.clash = findClash(inquiry.repository(), choices);
  if (result.clash) prependOwner(owner, *result.clash);
  return result;
}

}  // namespace tarn::evolution::catalogue
