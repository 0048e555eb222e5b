#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "catalogue/store/locked_store.hpp"
#include "catalogue/store/replacing_file.hpp"
#include "catalogue/store/sqlite_schema.hpp"
#include "catalogue/store/store_progress.hpp"

namespace tarn::evolution::catalogue {

/// What a store is to be next: a file of its own beside it, which takes its place when it is
/// complete. Until then nobody but this writes the store, and all that read it go on undisturbed.
class StoreSuccessor {
 public:
  enum class Content {
    None,  ///< begins as an empty store; what stood in the place goes
    Kept,  ///< begins as a copy of the store, brought to the present form
  };

  /// Waits up to five seconds for others that write the store; tells `progress` meanwhile, and
  /// which share of the store is copied. Throws CatalogueError when there is something else in the
  /// place, and what `progress` throws. One that is only tried never takes the place.
  StoreSuccessor(const std::filesystem::path& store, Content content,
                 const SqliteSchema& form = SqliteSchema::current(),
                 const StoreProgress& progress = {}, ChangeMode mode = ChangeMode::Made);

  /// Open to be built, within a transaction.
  SqliteDatabase& database() noexcept { return *database_; }

  /// Puts it in the store's place, safe from loss of power, unless it is only tried; ends its use.
  void takePlace();

 private:
  bool isNothingThere() const;
  void expectStore() const;
  void lockReplaced(const SqliteSchema& form, const std::function<void()>& whileWaiting);
  void checkReplaced(const SqliteSchema& form) const;
  void begin();
  void copyOld(const SqliteSchema& form, const StoreProgress& progress);

  std::filesystem::path given_;
  std::filesystem::path target_;
  std::optional<ReplacingFile> file_;  // none when it is only tried
  std::unique_ptr<LockedStore> old_;   // null where there is none, or a damaged one
  std::unique_ptr<SqliteDatabase> database_;
  std::optional<SqliteTransaction> transaction_;
};

}  // namespace tarn::evolution::catalogue
