#include "catalogue/conditions/remaining_versions.hpp"

#include <algorithm>

#include "catalogue/model/conflicting_dependencies.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Metamodel;
using pathfinder::VersionId;

bool RemainingVersions::isAvoided(const Metamodel& metamodel) const {
  const auto avoided = conditions_.avoided.find(metamodel.name);
  if (avoided == conditions_.avoided.end()) return false;
  const auto& versions = avoided->second;
  return std::find(versions.begin(), versions.end(), metamodel.version) != versions.end();
}

bool RemainingVersions::holds(const Metamodel& metamodel) {
  if (isAvoided(metamodel)) return false;
  return conditions_.avoided.empty() ? canBeLinked(metamodel) : canLink(*this, metamodel, isLeft_);
}

bool RemainingVersions::canBeLinked(const Metamodel& metamodel) {
  return canLink(content(), metamodel, isLinkable_);
}

void RemainingVersions::takeAll() {
  isBounded_ = false;
  hasMetTooMany_ = false;
  isLeft_.clear();
  isLinkable_.clear();
}

bool RemainingVersions::canLink(VersionRepository& repository, const Metamodel& metamodel,
                                Known& known) {
  // Linking asks for the very version first: that it is there.
  const auto [entry, isNew] = known.try_emplace(metamodel, true);
  if (!isNew) return entry->second;
  try {
    if (!isBounded_) {
      repository.getLinkedMetamodels(metamodel);
    } else if (!repository.tryCombine({{metamodel.name, metamodel.version}})) {
      hasMetTooMany_ = true;
    }
    return true;
  } catch (const ConflictingDependencies&) {
    return known[metamodel] = false;
  }
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
