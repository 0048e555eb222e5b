#pragma once

#include "catalogue/browsable_repository.hpp"
#include "catalogue/catalogue.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A repository whose metamodels and hops are those of a catalogue, in the catalogue's order.
///
/// A version that is asked for by a semantic version is the one that carries it, or else the text
/// version that is said to be equivalent to it. Ranges and directions go by precedence; a metamodel
/// that has pre-releases has a scale of its own for that (see `VersionScale`). The operations
/// declared here take no lock, and throw nothing but std::bad_alloc.
class TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueRepository : public BrowsableRepository {
 public:
  explicit CatalogueRepository(Catalogue catalogue);
  CatalogueRepository(const CatalogueRepository&) = delete;
  CatalogueRepository& operator=(const CatalogueRepository&) = delete;
  ~CatalogueRepository() override;

  const Catalogue& catalogue() const noexcept { return catalogue_; }

  std::optional<pathfinder::SemVer> getEquivalentSemVer(const std::u16string& metamodelName,
                                                        const std::u16string& versionText) override;
  std::optional<pathfinder::Metamodel> getMetamodel(const std::u16string& name,
                                                    const pathfinder::VersionId& version) override;
  void findMetamodels(const std::u16string& name, const pathfinder::VersionRange& range,
                      std::vector<pathfinder::Metamodel>& result) override;
  void findRequirements(const pathfinder::Metamodel& metamodel,
                        std::vector<pathfinder::PeerRequirement>& result) override;
  void findHops(const std::u16string& name, const pathfinder::VersionId& from,
                std::vector<pathfinder::Hop>& result) override;

  std::vector<std::u16string> listNames() override;
  std::vector<CatalogueMetamodel> listMetamodels(const std::u16string& name) override;
  std::vector<pathfinder::Hop> listHops(const std::u16string& name) override;
  std::u16string findVersionNote(const std::u16string& name,
                                 const pathfinder::VersionId& version) override;
  std::u16string findHopNote(const pathfinder::Hop& hop) override;
  std::optional<Question> getQuestion() override;

 private:
  /// Where a version stands that is asked for as it is shown.
  TARN_EVOLUTION_CATALOGUE_NO_EXPORT std::optional<CatalogueIndex::Position> find(
      const std::u16string& name, const pathfinder::VersionId& version) const;

  TARN_EVOLUTION_CATALOGUE_NO_EXPORT CatalogueMetamodel
  metamodelAt(CatalogueIndex::Position position) const;

  Catalogue catalogue_;
  std::unordered_map<CatalogueIndex::Position, CatalogueMetamodel> split_;  // see `Catalogue`
};

}  // namespace tarn::evolution::catalogue
