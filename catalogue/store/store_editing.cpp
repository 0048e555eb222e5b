#include "catalogue/store/store_editing.hpp"

#include "catalogue/file_error.hpp"
#include "catalogue/store/progress_sink.hpp"
#include "catalogue/store/sqlite_open.hpp"
#include "catalogue/store/store_filling.hpp"
#include "catalogue/store/store_removal.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// A store with a transaction open to change it.
class Editing {
 public:
  explicit Editing(const std::filesystem::path& store)
      : database_(openStoreForEditing(store)),
        transaction_(*database_, SqliteTransaction::Kind::Write) {
    if (database_->hasMoved()) failFor(store, "has been replaced meanwhile");
  }

  SqliteDatabase& database() { return *database_; }
  void commit() { transaction_.commit(); }

 private:
  std::unique_ptr<SqliteDatabase> database_;
  SqliteTransaction transaction_;
};

}  // namespace

StoreCounts addToStore(const std::filesystem::path& store, const std::filesystem::path& json,
                       const StoreProgress& progress) {
  Editing editing(store);
  const StoreCounts counts = fillStore(editing.database(), json, progress);
  if (progress) progress(1);
  editing.commit();
  return counts;
}

RemovalResult removeFromStore(const std::filesystem::path& store,
                              const std::vector<RemovalChoice>& choices,
                              const StoreProgress& progress) {
  Editing editing(store);
  RemovalResult result;
  {
    const SqliteWatch watch(editing.database(), toldAgain(progress, 0));
    result = StoreRemoval(editing.database()).run(choices);
  }
  if (progress) progress(1);
  if (result.obstacleCount == 0) editing.commit();
  return result;
}

}  // namespace tarn::evolution::catalogue
