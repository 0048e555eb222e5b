#pragma once

#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

namespace tarn::evolution::catalogue {

/// 24 bytes that sort as a semantic version does: its components, most significant byte first.
using PackedSemVer = std::array<unsigned char, 24>;

/// What may be bound to a statement: NULL, a number, a text in UTF-8, or a packed version.
using SqliteValue = std::variant<std::nullptr_t, std::int64_t, std::string, PackedSemVer>;

/// A connection to one database file. Everything that goes wrong here and in the statements is
/// thrown as a CatalogueError that names the file.
///
/// Not for use by two threads at once. Statements must not outlive their database.
class SqliteDatabase {
 public:
  enum class Access {
    Read,   ///< changes nothing; also where nothing can be written. Work is limited.
    Edit,   ///< to lock the file, or change it in its place. Work is limited.
    Build,  ///< to fill a file that nobody else knows of: after a change that fails it is of no use
  };

  /// In place of a file: a database of its own that goes with the connection.
  static constexpr const char* inMemory = ":memory:";

  /// The same with room on the disk, in a file without a name; to be built.
  static constexpr const char* temporary = "";

  /// The file must exist. Errors name it as `shownAs`, if that is given.
  SqliteDatabase(const std::filesystem::path& file, Access access,
                 const std::filesystem::path& shownAs = {});

  /// Runs statements that give no rows.
  void run(const char* statements);

  /// The single number that a statement gives.
  std::int64_t number(const char* statement);

  /// The single text that a statement gives.
  std::string text(const char* statement);

  /// Makes an empty database, which must be open to be built, the same as this one. Calls `tell`,
  /// unless it is empty, with the share that is done, again and again; what that throws ends it.
  void copyTo(SqliteDatabase& copy, const std::function<void(double)>& tell);

  /// Whether changes go to a second file first (SQLite's WAL mode).
  bool isWrittenAhead() const;

  /// Whether another file has taken the place of this one since it was opened.
  bool hasMoved() const;

  /// What failed last, as SQLite's extended result code.
  int lastError() const;

  /// Whether that was because the file is damaged.
  bool isDamaged() const;

  const std::filesystem::path& file() const noexcept { return shownAs_; }

  /// Throws what SQLite's result code means.
  [[noreturn]] void fail(int code) const;

  /// Throws CatalogueError that the file is damaged, for a reason and at a place.
  [[noreturn]] void failDamaged(const std::string& place, const std::string& reason) const;

 private:
  friend class SqliteStatement;
  friend class SqliteWatch;

  struct Close {
    void operator()(sqlite3* handle) const noexcept;
  };

  void open(int flags, const char* parameters = "");
  void openForReading();
  void openWrittenAhead();

  /// Limits each statement to what the file, as it is now, can have use for, so that none runs in
  /// circles when the file is damaged.
  void limitWork();

  void expect(int code) const;
  void callOnProgress();
  static int onProgress(void* database);
  static int onBusy(void* database, int count);
  bool callWatch();
  bool isSchemaBeyondMemory() const;

  std::filesystem::path file_;
  std::filesystem::path shownAs_;
  std::unique_ptr<sqlite3, Close> handle_;
  std::int64_t workLimit_ = 0;  // in units of progress; 0 for none
  std::int64_t work_ = 0;       // of the statement that runs
  std::function<void()> watch_;
  mutable std::exception_ptr thrownByWatch_;
};

/// A prepared statement.
class SqliteStatement {
 public:
  /// The rows that a statement gives, one at a time; ends the statement when it goes. Columns count
  /// from 0, and texts last until the next row.
  class Rows {
   public:
    explicit Rows(SqliteStatement& statement) : statement_(&statement) {}
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;
    ~Rows() { statement_->reset(); }

    bool next() { return statement_->step(); }

    bool isNull(int column) const;
    bool isText(int column) const;
    std::int64_t number(int column) const;
    std::string_view bytes(int column) const;  ///< of a text or a blob

   private:
    SqliteStatement* statement_;
  };

  SqliteStatement(SqliteDatabase& database, const char* text);
  SqliteStatement(SqliteDatabase& database, const std::string& text)
      : SqliteStatement(database, text.c_str()) {}

  /// Asks with these values for the statement's parameters. Only one list of rows at a time.
  template <class... Values>
  Rows query(const Values&... values) {
    int parameter = 0;
    (bind(++parameter, values), ...);
    database_->work_ = 0;
    return Rows(*this);
  }

  /// Runs a statement that gives no rows.
  template <class... Values>
  void run(const Values&... values) {
    Rows rows = query(values...);
    while (rows.next()) {
    }
  }

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* handle) const noexcept;
  };

  void bind(int parameter, const SqliteValue& value);
  bool step();
  void reset() noexcept;

  SqliteDatabase* database_;
  std::unique_ptr<sqlite3_stmt, Finalize> handle_;
};

/// While it lives, calls a function now and then while the database's statements run or wait. What
/// that throws ends the statement, which throws it on. An empty function is not called. Only one at
/// a time.
class SqliteWatch {
 public:
  SqliteWatch(SqliteDatabase& database, std::function<void()> watch);
  SqliteWatch(const SqliteWatch&) = delete;
  SqliteWatch& operator=(const SqliteWatch&) = delete;
  ~SqliteWatch();

 private:
  SqliteDatabase* database_;
};

/// Rolled back when it goes, unless it was committed.
class SqliteTransaction {
 public:
  enum class Kind { Read, Write };

  SqliteTransaction(SqliteDatabase& database, Kind kind);
  SqliteTransaction(const SqliteTransaction&) = delete;
  SqliteTransaction& operator=(const SqliteTransaction&) = delete;
  ~SqliteTransaction();

  void commit();

 private:
  SqliteDatabase* database_;
  bool isOpen_ = true;
};

}  // namespace tarn::evolution::catalogue
