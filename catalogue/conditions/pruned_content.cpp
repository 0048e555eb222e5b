// A version that cannot be linked ends a search between selections with its conflict, if it is met
// before the path finder goes on without linking, or if there is no path. So the question is asked
// again without those of which it is easy to tell. If there is a conflict still, there is no path:
// it is of a version of which it is not, and such a question is not linked.

#include "catalogue/conditions/pruned_content.hpp"

#include <algorithm>

#include "catalogue/model/conflicting_dependencies.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::SearchLimits;
using pathfinder::VersionId;

bool PrunedContent::isLeft(const Metamodel& metamodel) {
  return unlinkable_ == Unlinkable::LeftOut ? remaining_.holds(metamodel)
                                            : !remaining_.isAvoided(metamodel);
}

std::optional<Metamodel> PrunedContent::getMetamodel(const std::u16string& name,
                                                     const VersionId& version) {
  auto metamodel = ContentView::getMetamodel(name, version);
  return metamodel && isLeft(*metamodel) ? metamodel : std::nullopt;
}

void PrunedContent::findMetamodels(const std::u16string& name,
                                   const pathfinder::VersionRange& range,
                                   std::vector<Metamodel>& result) {
  ContentView::findMetamodels(name, range, result);
  std::erase_if(result, [this](const Metamodel& metamodel) { return !isLeft(metamodel); });
}

void PrunedContent::findHops(const std::u16string& name, const VersionId& from,
                             std::vector<Hop>& result) {
  if (conditions_.held.contains(name)) return;
  const auto kept = conditions_.kept.find(name);
  if (kept != conditions_.kept.end() && kept->second == from) return;
  ContentView::findHops(name, from, result);
  std::erase_if(result, [&](const Hop& hop) { return !getMetamodel(name, hop.to); });
}

void PrunedContent::findRequirements(const Metamodel& metamodel,
                                     std::vector<pathfinder::PeerRequirement>& result) {
  result = content().getRequirements(metamodel);
}

namespace {

using Path = std::vector<pathfinder::BaselineHop>;

/// Whether every version of a selection is there and left.
bool areLeft(PrunedContent& content, const Selection& selection) {
  return std::all_of(selection.begin(), selection.end(), [&](const auto& selected) {
    return content.getMetamodel(selected.first, selected.second).has_value();
  });
}

std::optional<Path> askOnce(PrunedContent& content, const Selection& from, const Selection& to,
                            const PathConditions& conditions, const SearchLimits& limits) {
  if (!areLeft(content, from) || !areLeft(content, to)) return std::nullopt;
  return conditions.direction ? content.findPathInDirection(from, to, *conditions.direction, limits)
                              : content.findPath(from, to, limits);
}

}  // namespace

std::optional<Path> findPrunedPath(BrowsableRepository& content, const Selection& from,
                                   const Selection& to, const PathConditions& conditions,
                                   const SearchLimits& limits) {
  using Unlinkable = PrunedContent::Unlinkable;
  try {
    PrunedContent pruned(content, conditions, Unlinkable::Kept);
    return askOnce(pruned, from, to, conditions, limits);
  } catch (const ConflictingDependencies&) {  // NOLINT(bugprone-empty-catch)
  }
  try {
    PrunedContent pruned(content, conditions, Unlinkable::LeftOut);
    return askOnce(pruned, from, to, conditions, limits);
  } catch (const ConflictingDependencies&) {
    return std::nullopt;
  }
}

}  // namespace tarn::evolution::catalogue
