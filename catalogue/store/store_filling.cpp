#include "catalogue/store/store_filling.hpp"

#include <istream>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/reading/json_file.hpp"
#include "catalogue/reading/json_stream.hpp"
#include "catalogue/store/progress_sink.hpp"
#include "catalogue/store/sqlite_rows.hpp"
#include "catalogue/store/sqlite_validation.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// The share of the work that reading is; the rest is looking at whether what was read is sound.
constexpr double readingShare = 0.75;

/// Inserts rows, but refuses a second question.
class FillingSink : public SqliteRowWriter {
 public:
  explicit FillingSink(SqliteDatabase& store) : SqliteRowWriter(store), store_(store) {}

  void setQuestion(const Question& question) override {
    if (store_.number("SELECT count(*) FROM question") > 0) {
      throw CatalogueError("/question", "the store has a question already");
    }
    SqliteRowWriter::setQuestion(question);
  }

 private:
  SqliteDatabase& store_;
};

/// Bytes that `in` has left to read; 0 when that cannot be said, as of a pipe.
double sizeOf(std::istream& in) {
  const auto end = in.seekg(0, std::ios::end).tellg();
  in.clear();
  if (end <= 0) return 0;
  in.seekg(0);
  return static_cast<double>(end);
}

}  // namespace

StoreCounts fillStore(SqliteDatabase& store, const std::filesystem::path& json,
                      RepeatedHops repeated, const StoreProgress& progress) {
  return readJsonFile(json, [&](std::istream& in) {
    const double size = sizeOf(in);
    FillingSink writer(store);
    ProgressSink sink(writer, progress, [&](const StoreCounts& /*rows*/) {
      return size > 0 ? readingShare * static_cast<double>(in.tellg()) / size : 0;
    });
    streamJsonCatalogue(in, sink);
    const SqliteWatch watch(store, toldAgain(progress, readingShare));
    validateAdded(store, writer.firstMetamodel(), writer.firstHop());
    if (repeated == RepeatedHops::Refused) expectNewHops(store, writer.firstHop());
    return sink.counts();
  });
}

}  // namespace tarn::evolution::catalogue
