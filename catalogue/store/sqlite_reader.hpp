#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/model/catalogue_sink.hpp"
#include "catalogue/store/bounded_cache.hpp"
#include "catalogue/store/sqlite_database.hpp"
#include "catalogue/version_scale.hpp"

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

  std::vector<StoredMetamodel> metamodelsAt(const std::u16string& name,
                                            const pathfinder::VersionId& version);
  std::vector<StoredMetamodel> metamodelsIn(const std::u16string& name,
                                            const pathfinder::VersionRange& range);
  std::vector<pathfinder::Hop> hopsFrom(const std::u16string& name,
                                        const pathfinder::VersionId& version);

  /// Whether the order of a name's versions takes more than the index by semantic version tells.
  bool hasOwnOrder(const std::u16string& name) { return !orderOf(name)->ascending.empty(); }

  /// How the versions of a name are shown to the path finder.
  std::shared_ptr<const VersionScale> scale(const std::u16string& name);

  std::vector<std::u16string> names();  ///< ascending
  StoredMetamodel metamodelAt(std::int64_t position);
  std::vector<StoredMetamodel> metamodelsOf(const std::u16string& name);
  std::vector<pathfinder::Hop> hopsOf(const std::u16string& name);
  std::u16string noteOf(const pathfinder::Hop& hop);  ///< empty when there is none
  std::optional<Question> question();

  /// Hands everything on, metamodels first, one row at a time.
  void readAll(CatalogueSink& sink);

 private:
  /// The versions of a name that have a precedence, if its text versions have any that their
  /// equivalents do not tell; otherwise the index by semantic version holds them all.
  struct NameOrder {
    std::vector<std::pair<Precedence, std::int64_t>> ascending;  // with positions
    VersionScale scale;

    std::size_t size() const noexcept { return ascending.size(); }
  };

  std::shared_ptr<const NameOrder> orderOf(const std::u16string& name);
  NameOrder readOrder(const std::u16string& name);
  bool hasReadableText(const std::u16string& name);
  std::vector<StoredMetamodel> metamodelsIn(const NameOrder& order, const std::u16string& name,
                                            const pathfinder::VersionRange& range);
  std::vector<StoredMetamodel> metamodelsInAny(const std::u16string& name,
                                               const std::vector<pathfinder::VersionRange>& ranges);
  StoredMetamodel metamodelIn(const SqliteStatement::Rows& rows, const std::u16string& name);
  std::vector<StoredMetamodel> metamodels(SqliteStatement::Rows rows, const std::u16string& name);
  pathfinder::Hop hopIn(const SqliteStatement::Rows& rows, const std::u16string& name) const;
  std::vector<pathfinder::Hop> hops(SqliteStatement::Rows rows, const std::u16string& name) const;
  void readDependencies(std::int64_t position, CatalogueMetamodel& metamodel);

  SqliteDatabase& database_;
  BoundedCache<NameOrder> orders_;
  const bool hasNotes_;
  SqliteStatement selectRange_;
  SqliteStatement selectSemVer_;
  SqliteStatement selectText_;
  SqliteStatement selectAt_;
  SqliteStatement selectTexts_;
  SqliteStatement selectVersions_;
  SqliteStatement selectMetamodels_;
  SqliteStatement selectDependencies_;
  SqliteStatement selectHopsFrom_;
  SqliteStatement selectHops_;
};

}  // namespace tarn::evolution::catalogue
