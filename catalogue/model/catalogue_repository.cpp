#include "catalogue/catalogue_repository.hpp"

#include <utility>

#include "catalogue/model/dependency_split.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

CatalogueRepository::CatalogueRepository(Catalogue catalogue)
    : catalogue_(std::move(catalogue)), split_(splitDependencies(catalogue_)) {
  if (catalogue_.hasRequirements() || !split_.empty()) useRequirements(*this);
}

CatalogueRepository::~CatalogueRepository() = default;

std::optional<pathfinder::SemVer> CatalogueRepository::getEquivalentSemVer(
    const std::u16string& metamodelName, const std::u16string& versionText) {
  const auto found = find(metamodelName, VersionId(versionText));
  const auto precedence = found ? catalogue_.index().precedence(*found) : std::nullopt;
  if (!precedence) return std::nullopt;
  return catalogue_.index().scale(metamodelName).equivalent(*precedence);
}

std::optional<pathfinder::Metamodel> CatalogueRepository::getMetamodel(const std::u16string& name,
                                                                       const VersionId& version) {
  const auto found = find(name, version);
  if (!found) return std::nullopt;
  return catalogue_.index().scale(name).shown(metamodelAt(*found).descriptor);
}

void CatalogueRepository::findMetamodels(const std::u16string& name,
                                         const pathfinder::VersionRange& range,
                                         std::vector<pathfinder::Metamodel>& result) {
  const VersionScale& scale = catalogue_.index().scale(name);
  for (const auto position : catalogue_.index().metamodelsIn(name, scale.meant(range))) {
    result.push_back(scale.shown(metamodelAt(position).descriptor));
  }
}

void CatalogueRepository::findRequirements(const pathfinder::Metamodel& metamodel,
                                           std::vector<pathfinder::PeerRequirement>& result) {
  const auto found = find(metamodel.name, metamodel.version);
  if (!found) return;
  for (CatalogueRequirement& requirement : metamodelAt(*found).requirements) {
    result.push_back(std::move(requirement.needed));
  }
}

void CatalogueRepository::findHops(const std::u16string& name, const pathfinder::VersionId& from,
                                   std::vector<pathfinder::Hop>& result) {
  const VersionScale& scale = catalogue_.index().scale(name);
  for (const auto position : catalogue_.index().hopsFrom(name, scale.meant(from))) {
    result.push_back(scale.shown(catalogue_.hops()[position]));
  }
}

std::vector<std::u16string> CatalogueRepository::listNames() {
  return catalogue_.index().names();
}

std::vector<CatalogueMetamodel> CatalogueRepository::listMetamodels(const std::u16string& name) {
  const VersionScale& scale = catalogue_.index().scale(name);
  std::vector<CatalogueMetamodel> result;
  for (const auto position : catalogue_.index().metamodelsOf(name)) {
    result.push_back(metamodelAt(position));
    result.back().descriptor = scale.shown(std::move(result.back().descriptor));
  }
  return result;
}

std::vector<pathfinder::Hop> CatalogueRepository::listHops(const std::u16string& name) {
  const VersionScale& scale = catalogue_.index().scale(name);
  std::vector<pathfinder::Hop> result;
  for (const auto position : catalogue_.index().hopsOf(name)) {
    result.push_back(scale.shown(catalogue_.hops()[position]));
  }
  return result;
}

std::u16string CatalogueRepository::findVersionNote(const std::u16string& name,
                                                    const pathfinder::VersionId& version) {
  const auto found = find(name, version);
  return found ? metamodelAt(*found).note : std::u16string();
}

std::u16string CatalogueRepository::findHopNote(const pathfinder::Hop& hop) {
  return catalogue_.hopNotes().of(catalogue_.index().scale(hop.name).meant(hop));
}

std::optional<Question> CatalogueRepository::getQuestion() {
  return catalogue_.question();
}

std::optional<CatalogueIndex::Position> CatalogueRepository::find(const std::u16string& name,
                                                                  const VersionId& version) const {
  const CatalogueIndex& index = catalogue_.index();
  return index.metamodelOf(name, index.scale(name).meant(version));
}

CatalogueMetamodel CatalogueRepository::metamodelAt(CatalogueIndex::Position position) const {
  const auto split = split_.find(position);
  return split == split_.end() ? catalogue_.metamodels()[position] : split->second;
}

}  // namespace tarn::evolution::catalogue
