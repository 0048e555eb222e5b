#include "catalogue/catalogue_repository.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "catalogue/model/dependency_split.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

CatalogueRepository::CatalogueRepository(Catalogue catalogue)
    : catalogue_(std::move(catalogue)),
      split_(splitDependencies(catalogue_.metamodels(), catalogue_.index())) {
  const auto& metamodels = catalogue_.metamodels();
  const bool anyIsOptional = std::any_of(
      metamodels.begin(), metamodels.end(),
      [](const CatalogueMetamodel& metamodel) { return !metamodel.requirements.empty(); });
  if (anyIsOptional || !split_.empty()) useRequirements(*this);
}

CatalogueRepository::~CatalogueRepository() = default;

std::optional<pathfinder::SemVer> CatalogueRepository::getEquivalentSemVer(
    const std::u16string& metamodelName, const std::u16string& versionText) {
  const VersionScale& scale = catalogue_.index().scale(metamodelName);
  const CatalogueMetamodel* const found = find(metamodelName, scale.meant(VersionId(versionText)));
  const auto precedence = found == nullptr ? std::nullopt : found->precedence();
  if (!precedence) return std::nullopt;
  return scale.equivalent(*precedence);
}

std::optional<pathfinder::Metamodel> CatalogueRepository::getMetamodel(const std::u16string& name,
                                                                       const VersionId& version) {
  const VersionScale& scale = catalogue_.index().scale(name);
  const CatalogueMetamodel* const found = find(name, scale.meant(version));
  if (found == nullptr) return std::nullopt;
  return scale.shown(found->descriptor);
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
  const VersionScale& scale = catalogue_.index().scale(metamodel.name);
  const CatalogueMetamodel* const found = find(metamodel.name, scale.meant(metamodel.version));
  if (found == nullptr) return;
  for (const CatalogueRequirement& requirement : found->requirements) {
    result.push_back(requirement.needed);
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
  std::set<std::u16string> names;
  for (const CatalogueMetamodel& metamodel : catalogue_.metamodels()) {
    names.insert(metamodel.descriptor.name);
  }
  return {names.begin(), names.end()};
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
  const CatalogueMetamodel* const found = find(name, catalogue_.index().scale(name).meant(version));
  return found == nullptr ? std::u16string() : found->note;
}

std::u16string CatalogueRepository::findHopNote(const pathfinder::Hop& hop) {
  return catalogue_.hopNotes().of(catalogue_.index().scale(hop.name).meant(hop));
}

std::optional<Question> CatalogueRepository::getQuestion() {
  return catalogue_.question();
}

/// The metamodel that carries a version, otherwise the first that is equivalent to it.
const CatalogueMetamodel* CatalogueRepository::find(const std::u16string& name,
                                                    const VersionId& version) const {
  const auto& metamodels = catalogue_.metamodels();
  const auto& found = catalogue_.index().metamodelsAt(name, version);
  for (const auto position : found) {
    if (metamodels[position].descriptor.version == version) return &metamodelAt(position);
  }
  return found.empty() ? nullptr : &metamodelAt(found.front());
}

const CatalogueMetamodel& CatalogueRepository::metamodelAt(
    CatalogueIndex::Position position) const {
  const auto split = split_.find(position);
  return split == split_.end() ? catalogue_.metamodels()[position] : split->second;
}

}  // namespace tarn::evolution::catalogue
