#include "catalogue/conditions/remaining_versions.hpp"

#include <algorithm>

#include "catalogue/model/conflicting_dependencies.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Metamodel;
using pathfinder::VersionId;

bool canLink(pathfinder::VersionRepository& repository, const Metamodel& metamodel) {
  try {
    repository.getLinkedMetamodels(metamodel);
    return true;
  } catch (const ConflictingDependencies&) {
    return false;
  }
}

bool RemainingVersions::isAvoided(const Metamodel& metamodel) const {
  const auto avoided = conditions_.avoided.find(metamodel.name);
  if (avoided == conditions_.avoided.end()) return false;
  const auto& versions = avoided->second;
  return std::find(versions.begin(), versions.end(), metamodel.version) != versions.end();
}

bool RemainingVersions::holds(const Metamodel& metamodel) {
  if (isAvoided(metamodel) || unlinkable_.contains(metamodel)) return false;
  pathfinder::VersionRepository& linking = conditions_.avoided.empty()
                                               ? static_cast<VersionRepository&>(content())
                                               : static_cast<VersionRepository&>(*this);
  if (canLink(linking, metamodel)) return true;
  unlinkable_.insert(metamodel);
  return false;
}

std::optional<Metamodel> RemainingVersions::getMetamodel(const std::u16string& name,
                                                         const VersionId& version) {
  auto metamodel = ContentView::getMetamodel(name, version);
  return metamodel && holds(*metamodel) ? metamodel : std::nullopt;
}

void RemainingVersions::findMetamodels(const std::u16string& name,
                                       const pathfinder::VersionRange& range,
                                       std::vector<Metamodel>& result) {
  ContentView::findMetamodels(name, range, result);
  std::erase_if(result, [&](const Metamodel& metamodel) { return !holds(metamodel); });
}

}  // namespace tarn::evolution::catalogue
