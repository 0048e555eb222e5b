#include "catalogue/explanation/linkable_repository.hpp"

#include <algorithm>

#include "catalogue/model/conflicting_dependencies.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::Metamodel;

const LinkedMetamodels* LinkableRepository::tryLink(const Metamodel& metamodel) {
  if (unlinkable_.contains(metamodel)) return nullptr;
  try {
    return &getLinkedMetamodels(metamodel);
  } catch (const ConflictingDependencies&) {
    unlinkable_.insert(metamodel);
    return nullptr;
  }
}

std::optional<bool> LinkableRepository::isLinkable(const Metamodel& metamodel) {
  if (unlinkable_.contains(metamodel)) return false;
  if (unbounded_.contains(metamodel)) return std::nullopt;
  try {
    if (tryCombine({{metamodel.name, metamodel.version}})) return true;
    unbounded_.insert(metamodel);
    return std::nullopt;
  } catch (const ConflictingDependencies&) {
    unlinkable_.insert(metamodel);
    return false;
  }
}

std::optional<std::vector<pathfinder::BaselineHop>> LinkableRepository::findPathBesideUnlinkable(
    const Question& question, const pathfinder::SearchLimits& limits) {
  try {
    return findPath(question.from, question.to, limits);
  } catch (const ConflictingDependencies&) {
    hideUnlinkable();
  }
  try {
    return findPath(question.from, question.to, limits);
  } catch (const ConflictingDependencies&) {
    return std::nullopt;
  }
}

void LinkableRepository::findRequirements(const Metamodel& metamodel,
                                          std::vector<pathfinder::PeerRequirement>& result) {
  result = content().getRequirements(metamodel);
}

void LinkableRepository::findHops(const std::u16string& name, const pathfinder::VersionId& from,
                                  std::vector<Hop>& result) {
  ContentView::findHops(name, from, result);
  if (!hidesUnlinkable_) return;
  std::erase_if(result, [this](const Hop& hop) { return leadsToUnlinkable(hop); });
}

bool LinkableRepository::leadsToUnlinkable(const Hop& hop) {
  const auto target = content().getMetamodel(hop.name, hop.to);
  if (!target || isLinkable(*target).value_or(true)) return false;
  const bool isNew = std::find(hidden_.begin(), hidden_.end(), *target) == hidden_.end();
  if (isNew) hidden_.push_back(*target);
  return true;
}

}  // namespace tarn::evolution::catalogue
