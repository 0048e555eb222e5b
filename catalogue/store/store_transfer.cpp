#include "catalogue/store/store_transfer.hpp"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>

#include "catalogue/reading/file_error.hpp"
#include "catalogue/reading/json_writer.hpp"
#include "catalogue/reading/sqlite_header.hpp"
#include "catalogue/store/progress_sink.hpp"
#include "catalogue/store/replacing_file.hpp"
#include "catalogue/store/sqlite_reader.hpp"
#include "catalogue/store/store_filling.hpp"
#include "catalogue/store/store_snapshot.hpp"
#include "catalogue/store/store_successor.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// Writes all that a store holds, and hands on what goes wrong with the file that is written.
StoreCounts writeAll(SqliteDatabase& store, const std::filesystem::path& json,
                     const StoreProgress& progress) {
  const auto rows = static_cast<double>(
      std::max<std::int64_t>(1, store.number("SELECT (SELECT count(*) FROM metamodels) + "
                                             "(SELECT count(*) FROM hops)")));
  std::ofstream out(json, std::ios::binary);
  out.exceptions(std::ios::badbit | std::ios::failbit);
  JsonCatalogueWriter writer(out);
  ProgressSink sink(writer, progress, [rows](const StoreCounts& written) {
    return static_cast<double>(written.metamodels + written.hops) / rows;
  });
  SqliteReader(store).readAll(sink);
  writer.finish();
  out.close();
  return sink.counts();
}

}  // namespace

StoreCounts importCatalogue(const std::filesystem::path& json, const std::filesystem::path& store,
                            const StoreProgress& progress) {
  StoreSuccessor successor(store, StoreSuccessor::Content::None, SqliteSchema::current(), progress);
  const StoreCounts counts = fillStore(successor.database(), json, progress);
  if (progress) progress(1);
  successor.takePlace();
  return counts;
}

StoreCounts exportCatalogue(const std::filesystem::path& store, const std::filesystem::path& json,
                            const StoreProgress& progress) {
  StoreSnapshot snapshot(store);
  if (isDatabase(json)) {
    failFor(json, "is a SQLite database, not a JSON catalogue; it is left alone");
  }
  ReplacingFile file(json, ReplacingFile::Kind::Plain, toldAgain(progress, 0));
  StoreCounts counts;
  try {
    counts = writeAll(snapshot.database(), file.path(), progress);
  } catch (const std::ios_base::failure&) {
    failFor(json, "cannot be written: " + std::generic_category().message(errno));
  }
  if (progress) progress(1);
  file.replaceTarget();
  return counts;
}

}  // namespace tarn::evolution::catalogue
