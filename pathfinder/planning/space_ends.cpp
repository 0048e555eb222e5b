#include "pathfinder/planning/space_ends.hpp"

#include <algorithm>
#include <utility>

#include "pathfinder/planning/surveyed_ends.hpp"

namespace tarn::evolution::pathfinder {

namespace {

/// The version of the space that has the descriptor of a linked metamodel; null when there is
/// none.
const SurveyedVersion* versionOf(const SurveyedEntry& entry) {
  const auto found = std::find_if(
      entry.name->versions.begin(), entry.name->versions.end(), [&](const auto* version) {
        return version->index != SearchSpace::none &&
               (version->descriptor == entry.linked ||
                *version->descriptor == static_cast<const Metamodel&>(*entry.linked));
      });
  return found == entry.name->versions.end() ? nullptr : *found;
}

/// Whether what closes a target may do so under another version of the name, which brings in each
/// entry that links it.
bool mayStandBack(const SearchSpace& space, const SurveyedTarget& target,
                  const SurveyedName& name) {
  const auto added = target.added.find(*name.text);
  if (!space.anyLinksOwnName || added == target.added.end()) return false;
  const auto& linking = added->second.linking;
  return std::all_of(linking.begin(), linking.end(), [&](const LinkedMetamodel* entry) {
    return std::any_of(name.versions.begin(), name.versions.end(), [&](const auto* version) {
      return version->linked != nullptr &&
             std::any_of(version->linked->begin(), version->linked->end(),
                         [&](const auto& each) { return bringsInAgainstItself(*each, *entry); });
    });
  });
}

/// False when no selection of the space can include the target.
bool select(const SearchSpace& space, const SurveyedTarget& target, VersionSelection& selection) {
  for (const auto& [name, linked] : target.entries) {
    if (mayStandBack(space, target, *name)) continue;
    const SurveyedVersion* version = versionOf({name, linked});
    if (version == nullptr || !version->isLinkedAs(*linked)) return false;
    selection[name->index] = version->index;
  }
  for (const SurveyedName* name : target.absent) {
    if (name->index == SearchSpace::none) continue;
    selection[name->index] = space.names[name->index].absent;
    if (selection[name->index] == SearchSpace::none) return false;
  }
  return true;
}

void addSources(const SurveyState& met, SearchSpace& space) {
  VersionSelection absent;
  for (const SearchSpace::Name& name : space.names) absent.push_back(name.absent);
  for (const SurveyedSource& source : met.sources) {
    SearchSpace::Source& added = space.sources.emplace_back();
    added.isRegular = source.isRegular;
    added.selection = absent;
    const bool isComplete =
        std::all_of(source.entries.begin(), source.entries.end(), [&](const SurveyedEntry& entry) {
          const SurveyedVersion* version = versionOf(entry);
          if (version == nullptr) return false;
          added.selection[entry.name->index] = version->index;
          return true;
        });
    if (!isComplete) added.selection.clear();
  }
}

void addTargets(const SurveyState& met, SearchSpace& space) {
  for (const SurveyedTarget& target : met.targets) {
    VersionSelection selection(space.names.size(), SearchSpace::none);
    if (target.isPossible && select(space, target, selection)) {
      space.targets.push_back(std::move(selection));
    }
  }
}

}  // namespace

void addEnds(const SurveyState& met, SearchSpace& space) {
  addSources(met, space);
  addTargets(met, space);
}

}  // namespace tarn::evolution::pathfinder
