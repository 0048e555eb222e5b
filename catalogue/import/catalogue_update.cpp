#include "catalogue/import/catalogue_update.hpp"

#include <cerrno>
#include <fstream>
#include <optional>
#include <unordered_map>
#include <utility>

#include "catalogue/catalogue_index.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/model/content_sink.hpp"
#include "catalogue/model/row_key.hpp"
#include "catalogue/model/same_rows.hpp"
#include "catalogue/model/validation.hpp"
#include "catalogue/reading/file_error.hpp"
#include "catalogue/reading/sqlite_header.hpp"
#include "catalogue/store/progress_sink.hpp"
#include "catalogue/store/replacing_file.hpp"
#include "catalogue/store/sqlite_reader.hpp"
#include "catalogue/store/sqlite_rows.hpp"
#include "catalogue/store/store_successor.hpp"

namespace tarn::evolution::catalogue {

namespace fs = std::filesystem;

namespace {

/// The share of the work after which rows are written.
constexpr double writingShare = 0.85;

/// Of several for the same hop the first one.
template <class Row>
std::unordered_map<std::u16string, const Row*> byKey(const std::vector<Row>& rows) {
  std::unordered_map<std::u16string, const Row*> result;
  for (const Row& row : rows) result.emplace(keyOf(row), &row);
  return result;
}

/// Counts of rows that are new, gone, or other than before.
template <class Row, class IsSame>
void compareRows(const std::vector<Row>& formerRows, const std::vector<Row>& presentRows,
                 std::uint64_t StoreCounts::*count, const IsSame& isSame,
                 CatalogueChanges& changes) {
  auto left = byKey(formerRows);
  for (const auto& [key, row] : byKey(presentRows)) {
    const auto former = left.find(key);
    if (former == left.end()) {
      ++(changes.added.*count);
    } else {
      if (!isSame(*former->second, *row)) ++(changes.changed.*count);
      left.erase(former);
    }
  }
  changes.removed.*count += left.size();
}

/// What differs, whatever the order.
CatalogueChanges changesBetween(const CatalogueContent& former, const CatalogueContent& present) {
  CatalogueChanges changes;
  compareRows(former.metamodels, present.metamodels, &StoreCounts::metamodels, isSameRow, changes);
  const auto isSameHop = [&](const pathfinder::Hop& left, const pathfinder::Hop& right) {
    return left.expensive == right.expensive &&
           former.hopNotes.of(left) == present.hopNotes.of(right);
  };
  compareRows(former.hops, present.hops, &StoreCounts::hops, isSameHop, changes);
  return changes;
}

/// The content that comes, known to be sound; what differs is noted.
CatalogueContent succeeded(const std::optional<CatalogueContent>& former, const Successor& succeed,
                           ImportReport& report) {
  CatalogueContent content = succeed(former.value_or(CatalogueContent()));
  try {
    const auto rows = packRows(content.metamodels, content.hops);
    validate(*rows, CatalogueIndex(rows));
  } catch (const CatalogueError& error) {
    throw CatalogueError("", error.reason());  // places in what nobody sees help nobody
  }
  report.counts = {content.metamodels.size(), content.hops.size()};
  report.isUpdate = former.has_value();
  if (former) report.changes = changesBetween(*former, content);
  return content;
}

void writeStore(SqliteDatabase& store, const CatalogueContent& content,
                const StoreProgress& progress) {
  const auto rows = static_cast<double>(content.metamodels.size() + content.hops.size() + 1);
  SqliteRowWriter writer(store);
  ProgressSink sink(writer, progress, [rows](const StoreCounts& written) {
    return writingShare +
           (1 - writingShare) * static_cast<double>(written.metamodels + written.hops) / rows;
  });
  sendAll(content, sink);
}

CatalogueContent takeAll(SqliteDatabase& store) {
  ContentSink sink;
  SqliteReader(store).readAll(sink);
  store.run(
      "DELETE FROM question_versions; DELETE FROM question; DELETE FROM dependencies;"
      "DELETE FROM hops; DELETE FROM metamodels; DELETE FROM names");
  return sink.take();
}

void updateStore(const fs::path& store, const Successor& succeed, const StoreProgress& progress,
                 ChangeMode mode, ImportReport& report) {
  const bool isThere = isDatabase(store);
  StoreSuccessor successor(
      store, isThere ? StoreSuccessor::Content::Kept : StoreSuccessor::Content::None,
      SqliteSchema::current(), isThere ? partOf(progress, 0, 0) : StoreProgress(), mode);
  std::optional<CatalogueContent> former;
  if (isThere) former = takeAll(successor.database());
  const CatalogueContent content = succeeded(former, succeed, report);
  writeStore(successor.database(), content, progress);
  if (progress) progress(1);
  successor.takePlace();
}

void tryJson(const fs::path& json, const Successor& succeed, ImportReport& report) {
  std::optional<CatalogueContent> former;
  if (fs::exists(ReplacingFile::resolve(json))) former = readJsonCatalogue(json).content();
  succeeded(former, succeed, report);
}

void updateJson(const fs::path& json, const Successor& succeed, const StoreProgress& progress,
                ImportReport& report) {
  ReplacingFile file(json, ReplacingFile::Kind::Plain, toldAgain(progress, 0));
  std::optional<CatalogueContent> former;
  if (file.replaces()) {
    former = readJsonCatalogue(json).content();
  }
  const CatalogueContent content = succeeded(former, succeed, report);
  try {
    std::ofstream out(file.path(), std::ios::binary);
    out.exceptions(std::ios::badbit | std::ios::failbit);
    writeJsonCatalogue(content, out);
    out.close();
  } catch (const std::ios_base::failure&) {
    failToWrite(json, errno);
  }
  if (progress) progress(1);
  file.replaceTarget();
}

}  // namespace

void updateCatalogue(const fs::path& catalogue, const Successor& succeed,
                     const StoreProgress& progress, ChangeMode mode, ImportReport& report) {
  if (catalogue.extension() != ".json") {
    updateStore(catalogue, succeed, progress, mode, report);
  } else if (mode == ChangeMode::Tried) {
    tryJson(catalogue, succeed, report);
  } else {
    updateJson(catalogue, succeed, progress, report);
  }
}

}  // namespace tarn::evolution::catalogue
