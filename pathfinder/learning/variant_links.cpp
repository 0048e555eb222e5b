// What a linked metamodel links itself is what its descriptor depends on, and what comes with none
// of that: the application has linked it.
//
// Combination takes names in ascending order, and of each the linked metamodels in theirs. One that
// agrees with what is decided decides on what it brings in; several that bring in the same are one
// choice.

#include "pathfinder/learning/variant_links.hpp"

#include <algorithm>
#include <utility>

namespace tarn::evolution::pathfinder {

std::unique_ptr<const VariantLinks> VariantLinks::create(const SearchSpace& space) {
  if (space.anyLinksAtWill) return nullptr;
  std::unique_ptr<VariantLinks> links(new VariantLinks(space));
  for (VersionIndex version = 0; version < space.versions.size(); ++version) {
    if (!space.isAbsent(version) && !links->findNeeds(version)) return nullptr;
  }
  return links;
}

/// False when it is not the same for all linked metamodels of the version.
bool VariantLinks::findNeeds(VersionIndex version) {
  bool isFirst = true;
  for (const SearchSpace::Variant& variant : space_.variantsOf(version)) {
    if (!variant.canBeCombined) continue;
    std::vector<NameIndex> needs = needsOf(variant);
    if (!std::exchange(isFirst, false) && needs != needs_[version]) return false;
    needs_[version] = std::move(needs);
  }
  return true;
}

std::vector<NameIndex> VariantLinks::needsOf(const SearchSpace::Variant& variant) const {
  const SearchSpace::Version& version = space_.versions[variant.version];
  std::vector<NameIndex> needs;
  std::vector<NameIndex> others{version.name};
  for (const SearchSpace::Link& link : variant.closure) {
    const auto& dependencies = version.descriptor->dependencies;
    const bool isNeeded =
        link.name != version.name &&
        std::any_of(dependencies.begin(), dependencies.end(), [&](const Dependency& dependency) {
          return dependency.name == space_.names[link.name].text;
        });
    if (!isNeeded) continue;
    needs.push_back(link.name);
    for (const SearchSpace::Link& further : space_.variants[link.variant].closure) {
      others.push_back(further.name);
    }
  }
  std::sort(others.begin(), others.end());
  for (const SearchSpace::Link& link : variant.closure) {
    if (!std::binary_search(others.begin(), others.end(), link.name)) needs.push_back(link.name);
  }
  std::erase_if(needs,
                [this](NameIndex name) { return space_.names[name].absent == SearchSpace::none; });
  std::sort(needs.begin(), needs.end());
  return needs;
}

void VariantLinks::visitChoices(VersionSelection selection, const Decide& decide) const {
  const VersionSelection selected = selection;
  for (const VersionIndex version : selected) {
    if (version == SearchSpace::none) continue;
    const std::vector<Group> groups = groupsOf(version, selection);
    const std::size_t chosen = groups.size() == 1 ? 0 : decide(groups);
    if (chosen >= groups.size()) return;
    for (const VersionIndex entered : groups[chosen]) {
      selection[space_.versions[entered].name] = entered;
    }
  }
}

/// What the version's linked metamodels that agree with a selection bring in, each group once.
std::vector<LinkChoices::Group> VariantLinks::groupsOf(VersionIndex version,
                                                       const VersionSelection& selection) const {
  std::vector<Group> groups;
  for (const SearchSpace::Variant& variant : space_.variantsOf(version)) {
    Group group;
    const bool agrees =
        variant.canBeCombined &&
        std::all_of(variant.closure.begin(), variant.closure.end(), [&](const auto& link) {
          const VersionIndex linked = space_.variants[link.variant].version;
          if (selection[link.name] == SearchSpace::none) group.push_back(linked);
          return selection[link.name] == SearchSpace::none || selection[link.name] == linked;
        });
    if (agrees && std::find(groups.begin(), groups.end(), group) == groups.end()) {
      groups.push_back(std::move(group));
    }
  }
  return groups;
}

}  // namespace tarn::evolution::pathfinder
