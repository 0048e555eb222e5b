#include "catalogue/explanation/selection_lookup.hpp"

#include <map>
#include <utility>

#include "catalogue/explanation/suggestions.hpp"

namespace tarn::evolution::catalogue {

namespace {

UnknownEntry describeUnknown(BrowsableRepository& repository, std::optional<QuestionSide> side,
                             const NamedVersion& unknown) {
  const std::vector<CatalogueMetamodel> known = repository.listMetamodels(unknown.name);
  UnknownEntry entry{side, unknown, !known.empty(), {}, nearestVersions(unknown.version, known)};
  if (known.empty()) entry.nearestNames = nearestNames(unknown.name, repository.listNames());
  return entry;
}

void addUnknown(BrowsableRepository& repository, std::optional<QuestionSide> side,
                const Selection& selection, std::vector<UnknownEntry>& result) {
  for (const auto& [name, version] : std::map(selection.begin(), selection.end())) {
    if (repository.getMetamodel(name, version)) continue;
    result.push_back(describeUnknown(repository, side, {name, version}));
  }
}

}  // namespace

UnknownEntries findUnknown(BrowsableRepository& repository, const Question& question) {
  UnknownEntries result;
  addUnknown(repository, QuestionSide::From, question.from, result.entries);
  addUnknown(repository, QuestionSide::To, question.to, result.entries);
  return result;
}

UnknownEntries findUnknown(BrowsableRepository& repository, const Selection& selection) {
  UnknownEntries result;
  addUnknown(repository, std::nullopt, selection, result.entries);
  return result;
}

UnknownEntries findUnknownNames(BrowsableRepository& repository,
                                const std::vector<std::u16string>& names) {
  UnknownEntries result;
  for (const std::u16string& name : names) {
    if (!repository.listMetamodels(name).empty()) continue;
    result.entries.push_back(describeUnknown(repository, std::nullopt, {name, {}}));
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
