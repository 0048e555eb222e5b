#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "catalogue/model/catalogue_sink.hpp"
#include "catalogue/store/sqlite_database.hpp"

/// How versions, texts and rows of a catalogue stand in a store.
namespace tarn::evolution::catalogue {

PackedSemVer pack(const pathfinder::SemVer& version);

/// A text version as a text, a semantic version packed. Throws std::invalid_argument for a text
/// that no store holds.
SqliteValue storedVersion(const pathfinder::VersionId& version);

/// What to look a text or a version up by: NULL, which equals nothing, for a text that is not
/// well-formed UTF-16, which no store holds.
SqliteValue sought(const std::u16string& text);
SqliteValue sought(const pathfinder::VersionId& version);

/// What stands in a column. They throw std::invalid_argument for what cannot stand there.
std::u16string textIn(const SqliteStatement::Rows& rows, int column);
pathfinder::SemVer semVerIn(const SqliteStatement::Rows& rows, int column);
pathfinder::VersionId versionIn(const SqliteStatement::Rows& rows, int column);

/// The same where NULL may stand.
std::optional<pathfinder::SemVer> optionalSemVerIn(const SqliteStatement::Rows& rows, int column);

/// A dependency's range: columns `column` (version), and the two after it (lower, upper).
pathfinder::VersionRange rangeIn(const SqliteStatement::Rows& rows, int column);

/// NULL for an empty note.
SqliteValue storedNote(const std::u16string& note);

/// A note; empty where NULL stands. Throws as they do.
std::u16string noteIn(const SqliteStatement::Rows& rows, int column);

/// What `read` returns; its std::invalid_argument becomes the error that the row of that table is
/// damaged.
template <class Read>
auto readRow(const SqliteDatabase& database, const char* table, std::int64_t row,
             const Read& read) {
  try {
    return read();
  } catch (const std::invalid_argument& error) {
    database.failDamaged("table " + std::string(table) + ", row " + std::to_string(row),
                         error.what());
  }
}

/// Inserts the rows that it receives after those that a store holds. Does not look at whether they
/// are sound. The caller holds the transaction.
class SqliteRowWriter : public CatalogueSink {
 public:
  explicit SqliteRowWriter(SqliteDatabase& database);

  void addMetamodel(const CatalogueMetamodel& metamodel) override;
  void addHop(const pathfinder::Hop& hop, const std::u16string& note) override;
  void setQuestion(const Question& question) override;

  /// Gives the metamodel at a position, which has none, these dependencies.
  void addDependencies(std::int64_t position, const CatalogueMetamodel& metamodel);

  std::int64_t firstMetamodel() const noexcept { return firstMetamodel_; }  ///< of those received
  std::int64_t firstHop() const noexcept { return firstHop_; }

 private:
  std::int64_t idOf(const std::u16string& name);
  void addDependency(std::int64_t position, std::int64_t ordinal,
                     const CatalogueRequirement& dependency);
  void addSelection(const std::string& side, const Selection& selection);

  SqliteStatement insertName_;
  SqliteStatement selectName_;
  SqliteStatement insertMetamodel_;
  SqliteStatement insertDependency_;
  SqliteStatement insertHop_;
  SqliteStatement insertQuestion_;
  SqliteStatement insertQuestionVersion_;
  std::unordered_map<std::u16string, std::int64_t> ids_;  // of names met lately
  std::int64_t firstMetamodel_;
  std::int64_t firstHop_;
  std::int64_t nextMetamodel_;
  std::int64_t nextHop_;
};

}  // namespace tarn::evolution::catalogue
