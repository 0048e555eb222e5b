#include "catalogue/store/sqlite_catalogue_repository.hpp"

#include <mutex>

#include "catalogue/store/cached_sqlite_reader.hpp"
#include "catalogue/store/store_snapshot.hpp"

namespace tarn::evolution::catalogue {

/// The connection and what stands on it, for one thread at a time.
class SqliteCatalogueRepository::Store {
 public:
  explicit Store(const std::filesystem::path& file)
      : snapshot_(file), reader_(snapshot_.database()) {}

  /// What `read` returns for the reader.
  template <class Read>
  auto ask(const Read& read) {
    const std::lock_guard lock(mutex_);
    return read(reader_);
  }

 private:
  std::mutex mutex_;
  StoreSnapshot snapshot_;
  CachedSqliteReader reader_;
};

SqliteCatalogueRepository::SqliteCatalogueRepository(const std::filesystem::path& file)
    : store_(std::make_unique<Store>(file)) {}

SqliteCatalogueRepository::~SqliteCatalogueRepository() = default;

std::optional<pathfinder::SemVer> SqliteCatalogueRepository::getEquivalentSemVer(
    const std::u16string& metamodelName, const std::u16string& versionText) {
  const auto found =
      store_->ask([&](auto& reader) { return reader.metamodelsIn(metamodelName, versionText); });
  if (found->empty()) return std::nullopt;
  return found->front().metamodel.equivalent;
}

void SqliteCatalogueRepository::findMetamodels(const std::u16string& name,
                                               const pathfinder::VersionRange& range,
                                               std::vector<pathfinder::Metamodel>& result) {
  const auto found = store_->ask([&](auto& reader) { return reader.metamodelsIn(name, range); });
  for (const StoredMetamodel& stored : *found) result.push_back(stored.metamodel.descriptor);
}

void SqliteCatalogueRepository::findHops(const std::u16string& name,
                                         const pathfinder::VersionId& from,
                                         std::vector<pathfinder::Hop>& result) {
  const auto found = store_->ask([&](auto& reader) { return reader.hopsFrom(name, from); });
  result.insert(result.end(), found->begin(), found->end());
}

std::vector<std::u16string> SqliteCatalogueRepository::listNames() {
  return store_->ask([](auto& reader) { return reader.uncached().names(); });
}

std::vector<CatalogueMetamodel> SqliteCatalogueRepository::listMetamodels(
    const std::u16string& name) {
  auto found = store_->ask([&](auto& reader) { return reader.uncached().metamodelsOf(name); });
  std::vector<CatalogueMetamodel> result;
  result.reserve(found.size());
  for (StoredMetamodel& stored : found) result.push_back(std::move(stored.metamodel));
  return result;
}

std::vector<pathfinder::Hop> SqliteCatalogueRepository::listHops(const std::u16string& name) {
  return store_->ask([&](auto& reader) { return reader.uncached().hopsOf(name); });
}

std::u16string SqliteCatalogueRepository::findVersionNote(const std::u16string& name,
                                                          const pathfinder::VersionId& version) {
  const auto range = pathfinder::VersionRange::singleVersion(version);
  const auto found =
      store_->ask([&](auto& reader) { return reader.uncached().metamodelsIn(name, range); });
  for (const StoredMetamodel& stored : found) {
    if (stored.metamodel.descriptor.version == version) return stored.metamodel.note;
  }
  return {};
}

std::u16string SqliteCatalogueRepository::findHopNote(const pathfinder::Hop& hop) {
  return store_->ask([&](auto& reader) { return reader.uncached().noteOf(hop); });
}

std::optional<Question> SqliteCatalogueRepository::getQuestion() {
  return store_->ask([](auto& reader) { return reader.uncached().question(); });
}

}  // namespace tarn::evolution::catalogue
