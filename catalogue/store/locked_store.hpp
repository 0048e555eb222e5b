#pragma once

#include <filesystem>
#include <functional>

#include "catalogue/store/sqlite_database.hpp"

namespace tarn::evolution::catalogue {

/// A store that is about to be replaced by another file. Once it is locked, nobody changes it as
/// long as this lives, other programs that use SQLite included; who reads it is not disturbed.
/// Whoever has this also has the file's WriteLock.
class LockedStore {
 public:
  /// Errors name the file as `shownAs`.
  LockedStore(const std::filesystem::path& file, const std::filesystem::path& shownAs);

  /// Waits up to five seconds for who changes it; `whileWaiting` is as for `WriteLock`. What was
  /// written ahead is brought into the file first, for which all others must let go of it. Throws
  /// CatalogueError when that fails, and when another file has taken its place.
  void lock(const std::function<void()>& whileWaiting);

  /// Throws CatalogueError when another file has taken its place.
  void expectInPlace() const;

  SqliteDatabase& database() noexcept { return *database_; }

  /// Undoes a change that another program left unfinished in a store; whether that was possible.
  static bool undoUnfinished(const std::filesystem::path& store);

 private:
  void open();
  void begin(const std::function<void()>& whileWaiting);
  void bringTogether(const std::function<void()>& whileWaiting);
  bool removeEmptyBeside();

  std::filesystem::path file_;
  std::filesystem::path shownAs_;
  std::unique_ptr<SqliteDatabase> database_;
};

}  // namespace tarn::evolution::catalogue
