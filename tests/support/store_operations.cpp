#include "support/store_operations.hpp"

#include <sqlite3.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/check/open_draft.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/selection_file.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_snapshot.hpp"
#include "catalogue/store/store_successor.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "support/store_folder.hpp"

namespace test {

using namespace tarn::evolution::catalogue;

namespace {

using FilePath = std::filesystem::path;

std::string bytesOf(const FilePath& file) {
  std::ostringstream bytes;
  bytes << std::ifstream(file, std::ios::binary).rdbuf();
  return bytes.str();
}

/// A connection of somebody who knows nothing of stores.
class PlainDatabase {
 public:
  explicit PlainDatabase(const FilePath& file) {
    sqlite3_open(file.c_str(), &handle_);
    sqlite3_busy_timeout(handle_, 1000);
  }
  PlainDatabase(const PlainDatabase&) = delete;
  PlainDatabase& operator=(const PlainDatabase&) = delete;
  ~PlainDatabase() { sqlite3_close(handle_); }

  /// All values that the statements give; what went wrong instead.
  std::string run(const std::string& statements) {
    std::string values;
    const auto add = [](void* to, int count, char** texts, char** /*names*/) {
      for (int i = 0; i < count; ++i) {
        *static_cast<std::string*>(to) +=
            (texts[i] == nullptr ? "NULL" : texts[i]) + std::string(i + 1 < count ? "|" : "\n");
      }
      return 0;
    };
    const int code = sqlite3_exec(handle_, statements.c_str(), add, &values, nullptr);
    return code == SQLITE_OK ? values : std::string("error: ") + sqlite3_errmsg(handle_);
  }

 private:
  sqlite3* handle_ = nullptr;
};

std::string contentOfDatabase(const FilePath& file) {
  PlainDatabase database(file);
  const std::string integrity = database.run("PRAGMA integrity_check");
  if (integrity != "ok\n") return integrity;
  std::string content = database.run(
      "PRAGMA application_id; PRAGMA user_version; SELECT sql FROM sqlite_schema ORDER BY name");
  std::istringstream tables(
      database.run("SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name"));
  for (std::string table; std::getline(tables, table);) {
    std::string columns;
    std::istringstream names(database.run("SELECT name FROM pragma_table_info('" + table + "')"));
    for (std::string name; std::getline(names, name);) {
      columns += (columns.empty() ? "" : ", ") + ("quote(" + name + ")");
    }
    content +=
        table + ":\n" + database.run("SELECT " + columns + " FROM " + table + " ORDER BY 1, 2");
  }
  return content;
}

void readEverything(BrowsableRepository& repository) {
  for (const std::u16string& name : repository.listNames()) {
    for (const auto& metamodel : repository.listMetamodels(name)) {
      std::vector<Hop> hops;
      repository.findHops(name, metamodel.descriptor.version, hops);
    }
  }
  repository.getQuestion();
}

/// Makes the files that the operations begin with.
class Originals : public StoreFolder {
 public:
  Originals() {
    TestRepository small("A1..3 B1:A[1,3) B2 A1>2 A2>3");
    CatalogueContent withQuestion = contentOf(small);
    withQuestion.question = Question{selection("A1"), selection("A3")};
    make("old", withQuestion);
    TestRepository large("C1..60 D1:C[1,9) D2..60:C3 C1>2 D1>2");
    make("new", contentOf(large));
    TestRepository more("A4..60 E1..60:A[2,50) A3>4 E1>2");
    make("more", contentOf(more), false);
    StoreSuccessor(path("m.store"), StoreSuccessor::Content::None, formerForm()).takePlace();
    writeAhead();
    leaveUnfinished();
  }
  void TestBody() override {}

  /// Of these files, each with the name that it is to have.
  Disk disk(const std::map<std::string, std::string>& names) const {
    Disk result;
    for (const auto& [name, original] : names)
      result[name] = bytes_.contains(original) ? bytes_.at(original) : read(original);
    return result;
  }

 private:
  /// A store whose last change is only beside it.
  void writeAhead() {
    write("ahead", read("old.store"));
    PlainDatabase database(path("ahead"));
    database.run(
        "PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0;"
        "INSERT INTO metamodels (position, name, version) VALUES (50, 1, 'ahead')");
    for (const std::string name : {"ahead", "ahead-wal"}) bytes_["kept " + name] = read(name);
  }

  /// A store in the middle of a change.
  void leaveUnfinished() {
    write("torn", read("new.store"));
    PlainDatabase database(path("torn"));
    database.run(
        "PRAGMA cache_size = 1; PRAGMA cache_spill = 1; BEGIN; UPDATE metamodels SET version = 'x';"
        "CREATE TABLE more AS SELECT * FROM metamodels a, metamodels b LIMIT 1000");
    for (const std::string name : {"torn", "torn-journal"}) bytes_["kept " + name] = read(name);
  }

  Disk bytes_;
};

std::vector<StoreOperation> makeOperations() {
  const Originals originals;
  const auto refuse = [](const auto& mistake) {
    try {
      mistake();
    } catch (const CatalogueError&) {
      return;
    }
    throw std::logic_error("a mistake was not noticed");
  };
  const auto import = [](const FilePath& folder) {
    importCatalogue(folder / "new.json", folder / "x.store");
  };
  const auto add = [](const FilePath& folder) {
    addToStore(folder / "x.store", folder / "more.json");
  };
  const auto ask = [](const FilePath& folder) {
    readEverything(*openCatalogue(folder / "x.store"));
  };
  const std::pair<std::string, std::string> newJson("new.json", "new.json");
  const std::pair<std::string, std::string> moreJson("more.json", "more.json");
  const std::pair<std::string, std::string> old("x.store", "old.store");
  const std::pair<std::string, std::string> ahead("x.store", "kept ahead");
  const std::pair<std::string, std::string> aheadLog("x.store-wal", "kept ahead-wal");
  return {
      {"import", originals.disk({newJson}), "x.store", import},
      {"import over a store", originals.disk({newJson, old}), "x.store", import},
      {"import over leftovers",
       originals.disk({newJson, aheadLog, {"x.store-journal", "kept torn-journal"}}), "x.store",
       import},
      {"import over a store written ahead", originals.disk({newJson, ahead, aheadLog}), "x.store",
       import},
      {"add", originals.disk({moreJson, old}), "x.store", add},
      {"add to a store written ahead", originals.disk({moreJson, ahead, aheadLog}), "x.store", add},
      {"remove", originals.disk({old}), "x.store",
       [](const FilePath& folder) {
         removeFromStore(folder / "x.store", {{u"B", {}}});
       }},
      {"export", originals.disk({old}), "y.json",
       [](const FilePath& folder) { exportCatalogue(folder / "x.store", folder / "y.json"); }},
      {"export over a file", originals.disk({old, {"y.json", "new.json"}}), "y.json",
       [](const FilePath& folder) { exportCatalogue(folder / "x.store", folder / "y.json"); }},
      {"migration", originals.disk({{"x.store", "m.store"}}), "x.store",
       [](const FilePath& folder) { StoreSnapshot(folder / "x.store", laterForm()); }},
      {"asking", originals.disk({old}), "", ask},
      {"asking a store written ahead", originals.disk({ahead, aheadLog}), "x.store", ask},
      {"asking a store with an unfinished change",
       originals.disk({{"x.store", "kept torn"}, {"x.store-journal", "kept torn-journal"}}),
       "x.store", ask},
      {"asking JSON", originals.disk({newJson}), "",
       [](const FilePath& folder) { readEverything(*openCatalogue(folder / "new.json")); }},
      {"drafts and selections", originals.disk({newJson, old, {"old.json", "old.json"}}), "",
       [](const FilePath& folder) {
         readDraft(folder / "new.json");
         readDraft(folder / "x.store");
         readSelectionFile(folder / "old.json", QuestionSide::From);
         readSelectionFile(folder / "x.store", QuestionSide::To);
       }},
      {"mistakes", originals.disk({newJson, old, {"y.store", "new.store"}}), "",
       [refuse](const FilePath& folder) {
         const FilePath json = folder / "new.json";
         const FilePath store = folder / "x.store";
         const FilePath other = folder / "y.store";
         refuse([&] { readJsonCatalogue(store); });
         refuse([&] { importCatalogue(store, other); });
         refuse([&] { importCatalogue(json, json); });
         refuse([&] { addToStore(store, other); });
         refuse([&] { addToStore(json, json); });
         refuse([&] { removeFromStore(json, {{u"A", {}}}); });
         refuse([&] { exportCatalogue(json, folder / "z.json"); });
         refuse([&] { exportCatalogue(store, other); });
       }},
  };
}

}  // namespace

Disk readDisk(const FilePath& folder) {
  Disk disk;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    disk[entry.path().filename()] = bytesOf(entry.path());
  }
  return disk;
}

void writeDisk(const Disk& disk, const FilePath& folder) {
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  for (const auto& [name, bytes] : disk) std::ofstream(folder / name, std::ios::binary) << bytes;
}

std::string contentOf(const FilePath& file) {
  if (!std::filesystem::exists(file)) return "none";
  const std::string bytes = bytesOf(file);
  return bytes.starts_with("SQLite format 3") ? contentOfDatabase(file) : bytes;
}

const std::vector<StoreOperation>& storeOperations() {
  static const std::vector<StoreOperation> operations = makeOperations();
  return operations;
}

const SqliteSchema& formerForm() {
  static const SqliteSchema form({"CREATE TABLE a (x INTEGER); INSERT INTO a VALUES (1), (2)"});
  return form;
}

const SqliteSchema& laterForm() {
  static const SqliteSchema form({"CREATE TABLE a (x INTEGER); INSERT INTO a VALUES (1), (2)",
                                  "ALTER TABLE a ADD COLUMN y INTEGER; UPDATE a SET y = 10 * x",
                                  "CREATE INDEX a_by_y ON a (y)"});
  return form;
}

}  // namespace test
