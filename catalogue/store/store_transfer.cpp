#include "catalogue/store/store_transfer.hpp"

#include <algorithm>
#include <fstream>

#include "catalogue/file_error.hpp"
#include "catalogue/json_writer.hpp"
#include "catalogue/store/progress_sink.hpp"
#include "catalogue/store/replacing_file.hpp"
#include "catalogue/store/sqlite_open.hpp"
#include "catalogue/store/sqlite_reader.hpp"
#include "catalogue/store/sqlite_schema.hpp"
#include "catalogue/store/store_filling.hpp"

namespace tarn::evolution::catalogue {

namespace {

using Kind = SqliteTransaction::Kind;

bool hasContent(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::exists(file, error)) return false;
  const auto size = std::filesystem::file_size(file, error);
  return error || size > 0;
}

/// Leaves a complete store in the file, in one piece.
StoreCounts makeStore(const std::filesystem::path& file, const std::filesystem::path& json,
                      const StoreProgress& progress) {
  SqliteDatabase store(file, SqliteDatabase::Access::Create);
  SqliteSchema::current().create(store);
  SqliteTransaction transaction(store, Kind::Write);
  const StoreCounts counts = fillStore(store, json, progress);
  transaction.commit();
  store.run("PRAGMA journal_mode = WAL");  // from now on; nothing is written any more
  return counts;
}

}  // namespace

StoreCounts importCatalogue(const std::filesystem::path& json, const std::filesystem::path& store,
                            const StoreProgress& progress) {
  ReplacingFile file(store);
  const bool replaces = hasContent(file.target());
  if (replaces && !isStoreFile(file.target())) {
    failFor(store, "exists and is not a catalogue store; it is left alone");
  }
  const StoreCounts counts = makeStore(file.path(), json, progress);
  const auto old = replaces ? lockStoreForReplacement(file.target()) : nullptr;
  if (progress) progress(1);
  file.replaceTarget();
  return counts;
}

StoreCounts exportCatalogue(const std::filesystem::path& store, const std::filesystem::path& json,
                            const StoreProgress& progress) {
  const auto database = openStoreForReading(store);
  if (isSqliteFile(json)) {
    failFor(json, "is a SQLite database, not a JSON catalogue; it is left alone");
  }
  const SqliteTransaction snapshot(*database, Kind::Read);
  const auto rows = static_cast<double>(
      std::max<std::int64_t>(1, database->number("SELECT (SELECT count(*) FROM metamodels) + "
                                                 "(SELECT count(*) FROM hops)")));
  ReplacingFile file(json);
  std::ofstream out(file.path(), std::ios::binary);
  JsonCatalogueWriter writer(out);
  ProgressSink sink(writer, progress, [rows](const StoreCounts& written) {
    return static_cast<double>(written.metamodels + written.hops) / rows;
  });
  SqliteReader(*database).readAll(sink);
  writer.finish();
  out.close();
  if (!out) failFor(json, "cannot be written");
  if (progress) progress(1);
  file.replaceTarget();
  return sink.counts();
}

}  // namespace tarn::evolution::catalogue
