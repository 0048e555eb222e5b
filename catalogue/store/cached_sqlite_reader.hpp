#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "catalogue/store/bounded_cache.hpp"
#include "catalogue/store/sqlite_reader.hpp"

namespace tarn::evolution::catalogue {

/// A reader that remembers what was asked for lately, and answers metamodels as the path finder is
/// to see them: with requirements in the place of dependencies that do not link (see `Catalogue`).
/// To tell which these are it looks at all that a metamodel needs, directly or not, once.
class CachedSqliteReader {
 public:
  using Metamodels = std::shared_ptr<const std::vector<StoredMetamodel>>;
  using Hops = std::shared_ptr<const std::vector<pathfinder::Hop>>;

  explicit CachedSqliteReader(SqliteDatabase& database);

  Metamodels metamodelsIn(const std::u16string& name, const pathfinder::VersionRange& range);

  /// The metamodel that asking for a version gives: the one that carries it, otherwise the first
  /// that is equivalent to it.
  std::optional<CatalogueMetamodel> find(const std::u16string& name,
                                         const pathfinder::VersionId& version);

  /// All versions of a metamodel.
  std::vector<StoredMetamodel> metamodelsOf(const std::u16string& name);

  /// Throws CatalogueError when a hop leads to a version that `VersionRepository::getMetamodel`
  /// would not find.
  Hops hopsFrom(const std::u16string& name, const pathfinder::VersionId& version);

  /// How the versions of a name are shown to the path finder.
  std::shared_ptr<const VersionScale> scale(const std::u16string& name) {
    return reader_.scale(name);
  }

  /// The reader itself, for what is not remembered.
  SqliteReader& uncached() noexcept { return reader_; }

 private:
  /// A metamodel on the way from the one asked for, and how far its dependencies were followed.
  struct Visit {
    std::size_t open;  // where it stands among the open ones
    std::size_t dependency = 0;
    std::size_t candidate = 0;  // of that dependency
  };

  /// A metamodel whose component is not closed, and the first of the open ones that it reaches.
  struct Open {
    StoredMetamodel stored;
    std::size_t low;
  };

  Metamodels lookUp(const std::u16string& name, const pathfinder::VersionRange& range);
  Metamodels versionsAt(const std::u16string& name, const pathfinder::VersionId& version);
  void split(std::vector<StoredMetamodel>& metamodels);
  void explore(const StoredMetamodel& start);
  void enter(const StoredMetamodel& stored);
  void follow(Visit& visit);
  void leave();
  void close(std::size_t first);

  SqliteDatabase& database_;
  SqliteReader reader_;
  BoundedCache<std::vector<StoredMetamodel>> metamodels_;
  BoundedCache<std::vector<pathfinder::Hop>> hops_;

  // Of positions that are done, those of which some dependency leads back, with which.
  std::unordered_set<std::int64_t> done_;
  std::unordered_map<std::int64_t, std::vector<bool>> leadBack_;

  // Tarjan's algorithm; empty between operations.
  std::vector<Visit> trail_;
  std::vector<Open> open_;                                // in the order in which they were entered
  std::unordered_map<std::int64_t, std::size_t> openAt_;  // by position
};

}  // namespace tarn::evolution::catalogue
