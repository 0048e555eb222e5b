#include "catalogue/store/store_transfer.hpp"

#include <algorithm>
#include <cerrno>
#include <fstream>

#include "catalogue/reading/file_error.hpp"
#include "catalogue/reading/json_file.hpp"
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

/// Has a stream throw what goes wrong with it, as long as this lives.
class ThrowingStream {
 public:
  explicit ThrowingStream(std::ostream& out) : out_(out), former_(out.exceptions()) {
    out_.exceptions(std::ios::badbit | std::ios::failbit);
  }
  ThrowingStream(const ThrowingStream&) = delete;
  ThrowingStream& operator=(const ThrowingStream&) = delete;
  ~ThrowingStream() {
    try {
      out_.exceptions(former_);
    } catch (const std::ios_base::failure&) {  // which has been thrown before
      return;
    }
  }

 private:
  std::ostream& out_;
  const std::ios::iostate former_;
};

/// Writes all that a store holds, and hands on what goes wrong with the stream.
StoreCounts writeAll(SqliteDatabase& store, std::ostream& out, const StoreProgress& progress) {
  const auto rows = static_cast<double>(
      std::max<std::int64_t>(1, store.number("SELECT (SELECT count(*) FROM metamodels) + "
                                             "(SELECT count(*) FROM hops)")));
  const ThrowingStream throwing(out);
  JsonCatalogueWriter writer(out);
  ProgressSink sink(writer, progress, [rows](const StoreCounts& written) {
    return static_cast<double>(written.metamodels + written.hops) / rows;
  });
  SqliteReader(store).readAll(sink);
  writer.finish();
  out.flush();
  if (progress) progress(1);
  return sink.counts();
}

/// The same to a file, which is closed; an error names `json`.
StoreCounts writeFile(SqliteDatabase& store, const std::filesystem::path& file,
                      const std::filesystem::path& json, const StoreProgress& progress) {
  try {
    std::ofstream out;
    out.exceptions(std::ios::badbit | std::ios::failbit);
    out.open(file, std::ios::binary);
    const StoreCounts counts = writeAll(store, out, progress);
    out.close();
    return counts;
  } catch (const std::ios_base::failure&) {
    failToWrite(json, errno);
  }
}

}  // namespace

StoreCounts importCatalogue(const std::filesystem::path& json, const std::filesystem::path& store,
                            const StoreProgress& progress, ChangeMode mode) {
  StoreSuccessor successor(store, StoreSuccessor::Content::None, SqliteSchema::current(), progress,
                           mode);
  const StoreCounts counts = fillStore(successor.database(), json, RepeatedHops::Kept, progress);
  if (progress) progress(1);
  successor.takePlace();
  return counts;
}

StoreCounts exportCatalogue(const std::filesystem::path& store, const std::filesystem::path& json,
                            const StoreProgress& progress) {
  StoreSnapshot snapshot(store);
  if (isReadOnce(json)) return writeFile(snapshot.database(), json, json, progress);
  if (isDatabase(json)) {
    failFor(json, "is a SQLite database, not a JSON catalogue; it is left alone");
  }
  ReplacingFile file(json, ReplacingFile::Kind::Plain, toldAgain(progress, 0));
  const StoreCounts counts = writeFile(snapshot.database(), file.path(), json, progress);
  file.replaceTarget();
  return counts;
}

StoreCounts exportCatalogue(const std::filesystem::path& store, std::ostream& out,
                            const StoreProgress& progress) {
  StoreSnapshot snapshot(store);
  return writeAll(snapshot.database(), out, progress);
}

}  // namespace tarn::evolution::catalogue
