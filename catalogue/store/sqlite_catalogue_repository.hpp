#pragma once

#include <filesystem>
#include <memory>

#include "catalogue/browsable_repository.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A repository over a store: a catalogue in a SQLite file, read as it is asked for.
///
/// Gives the answers that a `CatalogueRepository` gives for the same catalogue, in the same order.
/// Opening takes the same short time for stores of any size. A version or a hop is found through an
/// index. Memory holds some ten thousand rows of each kind, those asked for lately, and a small
/// entry for each version met.
///
/// **What it sees** is the store as it was when it was opened. Others may change the store
/// (`store_editing.hpp`), or import another one in its place, meanwhile, which is seen by
/// repositories that are opened later; other programs cannot write the file as long as it is open.
/// A store of an older form is read as it is. Reading needs no leave to write, and leaves nothing
/// beside the store. The process must open the file by no other means than SQLite meanwhile: to
/// close it again would end SQLite's locks.
///
/// **Threads.** Any number of threads may call any operations at once, those of `VersionRepository`
/// included, and may ask different questions. What reads the store takes turns at its one
/// connection, holding a lock only while it reads, never while it calls anything of the path
/// finder; all else, searching above all, goes on side by side. Construction and destruction must
/// not overlap with any other call. A child that `fork` makes must neither ask nor destroy one that
/// is open.
///
/// **Exceptions.** CatalogueError, which names the file: from the constructor when the file cannot
/// be read, is no store, is damaged so that this shows at once, or is of a newer form; from every
/// operation for damage that it meets. Such an operation can be called again.
class TARN_EVOLUTION_CATALOGUE_EXPORT SqliteCatalogueRepository : public BrowsableRepository {
 public:
  explicit SqliteCatalogueRepository(const std::filesystem::path& file);
  ~SqliteCatalogueRepository() override;

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
  class Store;

  TARN_EVOLUTION_CATALOGUE_NO_EXPORT pathfinder::Metamodel handedOut(
      const VersionScale& scale, const CatalogueMetamodel& metamodel);

  const std::unique_ptr<Store> store_;
};

}  // namespace tarn::evolution::catalogue
