#include "catalogue/catalogue_repository.hpp"

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

}  // namespace tarn::evolution::catalogue
