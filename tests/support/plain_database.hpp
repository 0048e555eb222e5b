#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <string>

namespace test {

/// A connection of somebody who knows nothing of stores. Makes the file if there is none.
class PlainDatabase {
 public:
  explicit PlainDatabase(const std::filesystem::path& file) {
    sqlite3_open(file.c_str(), &handle_);
    sqlite3_busy_timeout(handle_, 1000);
  }
  PlainDatabase(const PlainDatabase&) = delete;
  PlainDatabase& operator=(const PlainDatabase&) = delete;
  ~PlainDatabase() { sqlite3_close(handle_); }

  /// All values that the statements give, a row on each line; what went wrong instead.
  std::string run(const std::string& statements) {
    std::string rows;
    const int code = sqlite3_exec(handle_, statements.c_str(), addRow, &rows, nullptr);
    return code == SQLITE_OK ? rows : std::string("error: ") + sqlite3_errmsg(handle_);
  }

 private:
  static int addRow(void* rows, int count, char** values, char** /*names*/) {
    std::string& text = *static_cast<std::string*>(rows);
    for (int i = 0; i < count; ++i) {
      text += values[i] == nullptr ? "NULL" : values[i];
      text += i + 1 < count ? '|' : '\n';
    }
    return 0;
  }

  sqlite3* handle_ = nullptr;
};

}  // namespace test
