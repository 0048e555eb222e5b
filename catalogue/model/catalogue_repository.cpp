#include "catalogue/catalogue_repository.hpp"

#include <set>
#include <utility>

namespace tarn::evolution::catalogue {

CatalogueRepository::CatalogueRepository(Catalogue catalogue) : catalogue_(std::move(catalogue)) {}

std::optional<pathfinder::SemVer> CatalogueRepository::getEquivalentSemVer(
    const std::u16string& metamodelName, const std::u16string& versionText) {
  const auto& found = catalogue_.index().metamodelsAt(metamodelName, versionText);
  if (found.empty()) return std::nullopt;
  return catalogue_.metamodels()[found.front()].equivalent;
}

void CatalogueRepository::findMetamodels(const std::u16string& name,
                                         const pathfinder::VersionRange& range,
                                         std::vector<pathfinder::Metamodel>& result) {
  for (const auto position : catalogue_.index().metamodelsIn(name, range)) {
    result.push_back(catalogue_.metamodels()[position].descriptor);
  }
}

void CatalogueRepository::findHops(const std::u16string& name, const pathfinder::VersionId& from,
                                   std::vector<pathfinder::Hop>& result) {
  for (const auto position : catalogue_.index().hopsFrom(name, from)) {
    result.push_back(catalogue_.hops()[position]);
  }
}

std::vector<std::u16string> CatalogueRepository::listNames() {
  std::set<std::u16string> names;
  for (const CatalogueMetamodel& metamodel : catalogue_.metamodels()) {
    names.insert(metamodel.descriptor.name);
  }
  return {names.begin(), names.end()};
}

std::vector<CatalogueMetamodel> CatalogueRepository::listMetamodels(const std::u16string& name) {
  std::vector<CatalogueMetamodel> result;
  for (const CatalogueMetamodel& metamodel : catalogue_.metamodels()) {
    if (metamodel.descriptor.name == name) result.push_back(metamodel);
  }
  return result;
}

std::vector<pathfinder::Hop> CatalogueRepository::listHops(const std::u16string& name) {
  std::vector<pathfinder::Hop> result;
  for (const pathfinder::Hop& hop : catalogue_.hops()) {
    if (hop.name == name) result.push_back(hop);
  }
  return result;
}

std::u16string CatalogueRepository::findVersionNote(const std::u16string& name,
                                                    const pathfinder::VersionId& version) {
  for (const auto position : catalogue_.index().metamodelsAt(name, version)) {
    const CatalogueMetamodel& metamodel = catalogue_.metamodels()[position];
    if (metamodel.descriptor.version == version) return metamodel.note;
  }
  return {};
}

std::u16string CatalogueRepository::findHopNote(const pathfinder::Hop& hop) {
  return catalogue_.hopNotes().of(hop);
}

std::optional<Question> CatalogueRepository::getQuestion() {
  return catalogue_.question();
}

}  // namespace tarn::evolution::catalogue
