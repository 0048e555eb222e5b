#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "catalogue/store/bounded_cache.hpp"
#include "catalogue/store/sqlite_reader.hpp"

namespace tarn::evolution::catalogue {

/// A reader that remembers what was asked for lately, and answers metamodels only after it has made
/// sure that no dependencies form a cycle among them and all that they need, directly or not:
/// whoever links them would never end.
class CachedSqliteReader {
 public:
  using Metamodels = std::shared_ptr<const std::vector<StoredMetamodel>>;
  using Hops = std::shared_ptr<const std::vector<pathfinder::Hop>>;

  explicit CachedSqliteReader(SqliteDatabase& database);

  /// Throws CatalogueError when there is a cycle.
  Metamodels metamodelsIn(const std::u16string& name, const pathfinder::VersionRange& range);

  /// The metamodel that asking for a version gives: the one that carries it, otherwise the first
  /// that is equivalent to it. Throws CatalogueError when there is a cycle.
  std::optional<CatalogueMetamodel> find(const std::u16string& name,
                                         const pathfinder::VersionId& version);

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
    Metamodels candidates;  // which it is one of
    std::size_t candidate;
    std::size_t dependency;
  };

  /// What is kept for the key, or else what `read` finds, which is kept.
  template <class Read>
  Metamodels remembered(const std::u16string& key, const Read& read);

  Metamodels lookUp(const std::u16string& name, const pathfinder::VersionRange& range);
  Metamodels versionsAt(const std::u16string& name, const pathfinder::VersionId& version);
  void expectNoCycle(const Metamodels& candidates);
  void enterCandidate(const Metamodels& candidates);
  [[noreturn]] void failForCycle(std::int64_t position) const;

  static const StoredMetamodel& visited(const Visit& visit) {
    return (*visit.candidates)[visit.candidate];
  }

  SqliteDatabase& database_;
  SqliteReader reader_;
  BoundedCache<std::vector<StoredMetamodel>> metamodels_;
  BoundedCache<std::vector<pathfinder::Hop>> hops_;
  std::unordered_set<std::int64_t> cleared_;  // positions that lie on no cycle
  std::vector<Visit> trail_;                  // empty between operations
  std::unordered_set<std::int64_t> onTrail_;
};

}  // namespace tarn::evolution::catalogue
