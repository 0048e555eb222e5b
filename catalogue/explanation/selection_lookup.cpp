#include "catalogue/explanation/selection_lookup.hpp"

#include <map>
#include <utility>

#include "catalogue/explanation/suggestions.hpp"

namespace tarn::evolution::catalogue {

namespace {

void addUnknown(BrowsableRepository& repository, QuestionSide side, const Selection& selection,
                std::vector<UnknownEntry>& result) {
  for (const auto& [name, version] : std::map(selection.begin(), selection.end())) {
    if (repository.getMetamodel(name, version)) continue;
    const std::vector<CatalogueMetamodel> known = repository.listMetamodels(name);
    UnknownEntry entry{side, {name, version}, !known.empty(), {}, nearestVersions(version, known)};
    if (known.empty()) entry.nearestNames = nearestNames(name, repository.listNames());
    result.push_back(std::move(entry));
  }
}

}  // namespace

UnknownEntries findUnknown(BrowsableRepository& repository, const Question& question) {
  UnknownEntries result;
  addUnknown(repository, QuestionSide::From, question.from, result.entries);
  addUnknown(repository, QuestionSide::To, question.to, result.entries);
  return result;
}

}  // namespace tarn::evolution::catalogue
