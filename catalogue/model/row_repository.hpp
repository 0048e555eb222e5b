#pragma once

#include <atomic>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/catalogue.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A repository over rows that somebody else lists. Rows that were not asked for are passed over,
/// so that whoever lists may list too much; those of another name than was asked for are an error,
/// a std::logic_error that says so.
///
/// Nothing is kept: each operation lists anew, on the caller's thread and without a lock.
class TARN_EVOLUTION_CATALOGUE_EXPORT RowRepository : public BrowsableRepository {
 public:
  std::optional<pathfinder::SemVer> getEquivalentSemVer(const std::u16string& metamodelName,
                                                        const std::u16string& versionText) override;
  void findMetamodels(const std::u16string& name, const pathfinder::VersionRange& range,
                      std::vector<pathfinder::Metamodel>& result) override;
  void findHops(const std::u16string& name, const pathfinder::VersionId& from,
                std::vector<pathfinder::Hop>& result) override;

  /// What the row of the metamodel requires.
  void findRequirements(const pathfinder::Metamodel& metamodel,
                        std::vector<pathfinder::PeerRequirement>& result) override;

  std::vector<CatalogueMetamodel> listMetamodels(const std::u16string& name) override;
  std::vector<pathfinder::Hop> listHops(const std::u16string& name) override;
  std::optional<Question> getQuestion() override { return std::nullopt; }

  /// Rows tell nothing for people to read.
  std::u16string findVersionNote(const std::u16string& /*name*/,
                                 const pathfinder::VersionId& /*version*/) override {
    return {};
  }

 protected:
  /// Throws for rows of another name than was asked for.
  TARN_EVOLUTION_CATALOGUE_NO_EXPORT static void expectName(const std::u16string& asked,
                                                            const std::u16string& listed,
                                                            const char* what);

  /// At least the metamodels of a name whose version, or its equivalent, lies in any of `ranges`,
  /// none of which is a union; all of the name where there are none. In the preferred order.
  virtual std::vector<CatalogueMetamodel> rowsOf(
      const std::u16string& name, std::span<const pathfinder::VersionRange> ranges) = 0;

  /// At least the hops of a name that leave `from`; all of the name where it is null.
  virtual std::vector<pathfinder::Hop> hopsOf(const std::u16string& name,
                                              const pathfinder::VersionId* from) = 0;

 private:
  std::vector<CatalogueMetamodel> checkedRowsOf(const std::u16string& name,
                                                std::span<const pathfinder::VersionRange> ranges);
  std::vector<pathfinder::Hop> checkedHopsOf(const std::u16string& name,
                                             const pathfinder::VersionId* from);

  std::atomic<bool> anyRowRequires_ = false;
};

}  // namespace tarn::evolution::catalogue
