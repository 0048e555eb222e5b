#include "catalogue/store/sqlite_catalogue_repository.hpp"

#include <mutex>
#include <utility>

#include "catalogue/store/cached_sqlite_reader.hpp"
#include "catalogue/store/store_snapshot.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

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
  return store_->ask([&](auto& reader) -> std::optional<pathfinder::SemVer> {
    const auto scale = reader.scale(metamodelName);
    const auto found = reader.find(metamodelName, scale->meant(VersionId(versionText)));
    const auto precedence = found ? found->precedence() : std::nullopt;
    if (!precedence) return std::nullopt;
    return scale->equivalent(*precedence);
  });
}

std::optional<pathfinder::Metamodel> SqliteCatalogueRepository::getMetamodel(
    const std::u16string& name, const VersionId& version) {
  return store_->ask([&](auto& reader) -> std::optional<pathfinder::Metamodel> {
    const auto scale = reader.scale(name);
    const auto found = reader.find(name, scale->meant(version));
    if (!found) return std::nullopt;
    return handedOut(*scale, *found);
  });
}

void SqliteCatalogueRepository::findMetamodels(const std::u16string& name,
                                               const pathfinder::VersionRange& range,
                                               std::vector<pathfinder::Metamodel>& result) {
  const auto [scale, found] = store_->ask([&](auto& reader) {
    auto own = reader.scale(name);
    auto metamodels = reader.metamodelsIn(name, own->meant(range));
    return std::pair(std::move(own), std::move(metamodels));
  });
  for (const StoredMetamodel& stored : *found) {
    result.push_back(handedOut(*scale, stored.metamodel));
  }
}

/// Before the first that has requirements is linked, the path finder has to know of them.
pathfinder::Metamodel SqliteCatalogueRepository::handedOut(const VersionScale& scale,
                                                           const CatalogueMetamodel& metamodel) {
  if (!metamodel.requirements.empty() && !hasRequirements()) useRequirements(*this);
  return scale.shown(metamodel.descriptor);
}

void SqliteCatalogueRepository::findRequirements(const pathfinder::Metamodel& metamodel,
                                                 std::vector<pathfinder::PeerRequirement>& result) {
  const auto found = store_->ask([&](auto& reader) {
    return reader.find(metamodel.name, reader.scale(metamodel.name)->meant(metamodel.version));
  });
  if (!found) return;
  for (const CatalogueRequirement& requirement : found->requirements) {
    result.push_back(requirement.needed);
  }
}

void SqliteCatalogueRepository::findHops(const std::u16string& name,
                                         const pathfinder::VersionId& from,
                                         std::vector<pathfinder::Hop>& result) {
  const auto [scale, found] = store_->ask([&](auto& reader) {
    auto own = reader.scale(name);
    auto hops = reader.hopsFrom(name, own->meant(from));
    return std::pair(std::move(own), std::move(hops));
  });
  for (const pathfinder::Hop& hop : *found) result.push_back(scale->shown(hop));
}

std::vector<std::u16string> SqliteCatalogueRepository::listNames() {
  return store_->ask([](auto& reader) { return reader.uncached().names(); });
}

std::vector<CatalogueMetamodel> SqliteCatalogueRepository::listMetamodels(
    const std::u16string& name) {
  auto [scale, found] = store_->ask(
      [&](auto& reader) { return std::pair(reader.scale(name), reader.metamodelsOf(name)); });
  std::vector<CatalogueMetamodel> result;
  result.reserve(found.size());
  for (auto& [position, metamodel] : found) {
    result.push_back(std::move(metamodel));
    result.back().descriptor = handedOut(*scale, result.back());
  }
  return result;
}

std::vector<pathfinder::Hop> SqliteCatalogueRepository::listHops(const std::u16string& name) {
  auto [scale, hops] = store_->ask(
      [&](auto& reader) { return std::pair(reader.scale(name), reader.uncached().hopsOf(name)); });
  for (pathfinder::Hop& hop : hops) hop = scale->shown(std::move(hop));
  return hops;
}

std::u16string SqliteCatalogueRepository::findVersionNote(const std::u16string& name,
                                                          const pathfinder::VersionId& version) {
  const auto found = store_->ask(
      [&](auto& reader) { return reader.find(name, reader.scale(name)->meant(version)); });
  return found ? found->note : std::u16string();
}

std::u16string SqliteCatalogueRepository::findHopNote(const pathfinder::Hop& hop) {
  return store_->ask(
      [&](auto& reader) { return reader.uncached().noteOf(reader.scale(hop.name)->meant(hop)); });
}

std::optional<Question> SqliteCatalogueRepository::getQuestion() {
  return store_->ask([](auto& reader) { return reader.uncached().question(); });
}

}  // namespace tarn::evolution::catalogue
