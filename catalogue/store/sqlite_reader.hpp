#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/model/catalogue_sink.hpp"
#include "catalogue/store/sqlite_database.hpp"

namespace tarn::evolution::catalogue {

/// A metamodel and where it stands in its store.
struct StoredMetamodel {
  std::int64_t position;
  CatalogueMetamodel metamodel;
};

/// Looks up what a store holds, of whichever form it is. Answers are in the store's order, and are
/// those of `CatalogueIndex` for the same content. Throws CatalogueError, which names the file, for
/// damage that it meets.
class SqliteReader {
 public:
  explicit SqliteReader(SqliteDatabase& database);

  std::vector<StoredMetamodel> metamodelsIn(const std::u16string& name,
                                            const pathfinder::VersionRange& range);
  std::vector<pathfinder::Hop> hopsFrom(const std::u16string& name,
                                        const pathfinder::VersionId& version);

  std::vector<std::u16string> names();  ///< ascending
  StoredMetamodel metamodelAt(std::int64_t position);
  std::vector<StoredMetamodel> metamodelsOf(const std::u16string& name);
  std::vector<pathfinder::Hop> hopsOf(const std::u16string& name);
  std::u16string noteOf(const pathfinder::Hop& hop);  ///< empty when there is none
  std::optional<Question> question();

  /// Hands everything on, metamodels first, one row at a time.
  void readAll(CatalogueSink& sink);

 private:
  std::vector<StoredMetamodel> metamodelsInAny(const std::u16string& name,
                                               const std::vector<pathfinder::VersionRange>& ranges);
  StoredMetamodel metamodelIn(const SqliteStatement::Rows& rows, const std::u16string& name);
  std::vector<StoredMetamodel> metamodels(SqliteStatement::Rows rows, const std::u16string& name);
  pathfinder::Hop hopIn(const SqliteStatement::Rows& rows, const std::u16string& name) const;
  std::vector<pathfinder::Hop> hops(SqliteStatement::Rows rows, const std::u16string& name) const;
  std::vector<pathfinder::Dependency> dependenciesOf(std::int64_t position,
                                                     std::vector<std::u16string>& notes);

  SqliteDatabase& database_;
  const bool hasNotes_;
  SqliteStatement selectRange_;
  SqliteStatement selectSemVer_;
  SqliteStatement selectText_;
  SqliteStatement selectMetamodels_;
  SqliteStatement selectDependencies_;
  SqliteStatement selectHopsFrom_;
  SqliteStatement selectHops_;
};

}  // namespace tarn::evolution::catalogue
