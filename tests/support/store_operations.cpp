#include "support/store_operations.hpp"

#include <unistd.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/check/open_draft.hpp"
#include "catalogue/import/import.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/selection_file.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_snapshot.hpp"
#include "catalogue/store/store_successor.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "catalogue/text/printed_text.hpp"
#include "support/items.hpp"
#include "support/plain_database.hpp"
#include "support/store_folder.hpp"

namespace test {

using namespace tarn::evolution::catalogue;

namespace {

using FilePath = std::filesystem::path;

std::string contentOfDatabase(const FilePath& file) {
  PlainDatabase database(file);
  const std::string integrity = database.run("PRAGMA integrity_check");
  if (integrity != "ok\n") return integrity;
  std::string content = database.run(
      "PRAGMA application_id; PRAGMA user_version; SELECT sql FROM sqlite_schema ORDER BY name");
  const std::string tables =
      database.run("SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name");
  for (const std::string& table : parted(tables, '\n')) {
    std::string columns;
    const std::string names = database.run("SELECT name FROM pragma_table_info('" + table + "')");
    for (const std::string& name : parted(names, '\n')) {
      columns += (columns.empty() ? "" : ", ") + ("quote(" + name + ")");
    }
    content +=
        table + ":\n" + database.run("SELECT " + columns + " FROM " + table + " ORDER BY 1, 2");
  }
  return content;
}

std::string everythingIn(const std::filesystem::path& file) {
  const auto repository = openCatalogue(file);
  std::string text;
  for (const std::u16string& name : repository->listNames()) {
    for (const auto& metamodel : repository->listMetamodels(name)) {
      std::vector<Hop> hops;
      repository->findHops(name, metamodel.descriptor.version, hops);
      text += textOf(metamodel.descriptor) + " " + std::to_string(hops.size()) + "\n";
    }
  }
  return text + std::to_string(repository->getQuestion().has_value());
}

/// The counts of what was read leniently; what kept it from being read is thrown.
std::string draftOf(const std::filesystem::path& file) {
  const CatalogueDraft draft = readDraft(file);
  for (const Finding& finding : draft.findings)
    throw CatalogueError("", finding.message).inFile(file);
  return std::to_string(draft.metamodels.size()) + " " + std::to_string(draft.hops.size()) + "\n";
}

/// What the repository holds and something whose texts take memory of their own.
CatalogueContent withLongTexts(TestRepository&& repository) {
  CatalogueContent content = contentOf(repository);
  const std::u16string name = u"a metamodel with \u00e4 name that is longer than most";
  const std::u16string text = u"a version that is named rather than numbered";
  const std::uint64_t number = 1'000'000'000'000'000;
  content.metamodels.push_back({Metamodel(name, text, {}), SemVer{number, number, number}});
  content.metamodels.push_back(
      {Metamodel(name, SemVer{number, number, number + 1}, {{name, text}}), std::nullopt});
  content.hops.emplace_back(name, text, SemVer{number, number, number + 1}, false);
  return content;
}

/// Makes the files that the operations begin with.
class Originals : public StoreFolder {
 public:
  explicit Originals(CatalogueSize size) {
    const std::string last = size == CatalogueSize::Small ? "3" : "30";
    CatalogueContent withQuestion = withLongTexts(TestRepository("A1..3 B1:A[1,3) B2 A1>2 A2>3"));
    withQuestion.question = Question{selection("A1"), selection("A3")};
    make("old", withQuestion);
    make("new",
         withLongTexts(TestRepository("C1.." + last + " D1:C[1,9) D2.." + last + ":C3 C1>2 D1>2")));
    make("more", contentOf(TestRepository("A4.." + last + "0 E1.." + last + ":A[2,50) A3>4 E2>1")),
         false);
    make("other", contentOf(TestRepository("A2 B1:A[1,2)+A[2,3) A1>2!")), false);
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
        "CREATE TABLE more (content); INSERT INTO more VALUES (zeroblob(100000))");
    for (const std::string name : {"torn", "torn-journal"}) bytes_["kept " + name] = read(name);
  }

  Disk bytes_;
};

/// Other programs' catalogues, each with a version of a name that the catalogues have not.
const Disk foreign{
    {"t.csv",
     "name,version,needs\nAMetamodelWithALongName,a version that is a long text,\n"
     "L,1.0.0,AMetamodelWithALongName\nL,2.0.0,A 1 || 3\n"},
    {"n.json", R"({"name": "N", "versions": {"1.0.0": {"peerDependencies": {"A": ">1 || 3"}}}})"},
    {"s.yaml", "name: S\nstops: [&a '1.2', {version: 1.5, note: a text that takes memory}]\n"}};

std::string textOf(const StoreCounts& counts) {
  return std::to_string(counts.metamodels) + " " + std::to_string(counts.hops);
}

void refuse(const std::function<void()>& mistake) {
  try {
    mistake();
  } catch (const CatalogueError&) {
    return;
  }
  throw std::logic_error("a mistake was not noticed");
}

std::string makeMistakes(const FilePath& folder) {
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
  ImportOptions options;
  options.sources = {json};
  refuse([&] { importForeignCatalogue(options, folder / "z.json"); });
  return "";
}

}  // namespace

std::vector<StoreOperation> storeOperations(CatalogueSize size) {
  const Originals originals(size);
  const auto import = [](const FilePath& folder) {
    return textOf(importCatalogue(folder / "new.json", folder / "x.store"));
  };
  const auto add = [](const FilePath& folder) {
    return textOf(addToStore(folder / "x.store", folder / "more.json"));
  };
  const auto remove = [](const FilePath& folder) {
    return textOf(removeFromStore(folder / "x.store", {{u"B", {}}}).removed);
  };
  const auto change = [](const FilePath& folder) {
    const auto [changed, unchanged] = changeStore(folder / "x.store", folder / "other.json");
    return textOf({changed.metamodels + unchanged.metamodels, changed.hops + unchanged.hops});
  };
  const auto tryAll = [](const FilePath& folder) {
    const FilePath store = folder / "x.store";
    const ChangeMode tried = ChangeMode::Tried;
    return textOf(importCatalogue(folder / "new.json", store, {}, tried)) +
           textOf(addToStore(store, folder / "more.json", {}, tried)) +
           textOf(changeStore(store, folder / "other.json", {}, tried).changed) +
           textOf(removeFromStore(store, {{u"B", {}}, {u"A", v(1), v(2)}}, {}, tried).removed);
  };
  const auto write = [](const FilePath& folder) {
    return textOf(exportCatalogue(folder / "x.store", folder / "y.json"));
  };
  const auto migrate = [](const FilePath& folder) {
    const FilePath store = folder / "x.store";
    StoreSuccessor(store, StoreSuccessor::Content::Kept, laterForm()).takePlace();
    return StoreSnapshot(store, laterForm()).database().text("SELECT sum(y) FROM a");
  };
  const auto join = [](const std::string& catalogue, ImportFormat format,
                       const std::string& source) {
    return [=](const FilePath& folder) {
      ImportOptions options;
      options.format = format;
      options.sources = {folder / source};
      options.keepsOthers = true;
      return textOf(importForeignCatalogue(options, folder / catalogue).counts);
    };
  };
  const auto withForeign = [&](const std::map<std::string, std::string>& names) {
    Disk disk = originals.disk(names);
    disk.insert(foreign.begin(), foreign.end());
    return disk;
  };
  const auto ask = [](const FilePath& folder) {
    std::ostringstream exported;
    exportCatalogue(folder / "x.store", exported);
    return everythingIn(folder / "x.store") + std::move(exported).str();
  };
  const auto askJson = [](const FilePath& folder) { return everythingIn(folder / "new.json"); };
  const auto draw = [](const FilePath& folder) {
    return draftOf(folder / "new.json") + draftOf(folder / "x.store") +
           std::to_string(readSelectionFile(folder / "old.json", QuestionSide::From).size() +
                          readSelectionFile(folder / "x.store", QuestionSide::To).size());
  };
  const std::pair<std::string, std::string> newJson("new.json", "new.json");
  const std::pair<std::string, std::string> moreJson("more.json", "more.json");
  const std::pair<std::string, std::string> otherJson("other.json", "other.json");
  const std::pair<std::string, std::string> old("x.store", "old.store");
  const std::pair<std::string, std::string> ahead("x.store", "kept ahead");
  const std::pair<std::string, std::string> aheadLog("x.store-wal", "kept ahead-wal");
  const std::pair<std::string, std::string> torn("x.store", "kept torn");
  const std::pair<std::string, std::string> tornLog("x.store-journal", "kept torn-journal");
  const auto disk = [&](const std::map<std::string, std::string>& names) {
    return originals.disk(names);
  };
  return {
      {"import", disk({newJson}), "x.store", import},
      {"import over a store", disk({newJson, old}), "x.store", import},
      {"import over leftovers", disk({newJson, aheadLog, tornLog}), "x.store", import},
      {"import, written ahead", disk({newJson, ahead, aheadLog}), "x.store", import},
      {"add", disk({moreJson, old}), "x.store", add},
      {"add, written ahead", disk({moreJson, ahead, aheadLog}), "x.store", add},
      {"change", disk({otherJson, old}), "x.store", change},
      {"remove", disk({old}), "x.store", remove},
      {"trying", disk({newJson, moreJson, otherJson, old}), "", tryAll},
      {"export", disk({old}), "y.json", write},
      {"export over a file", disk({old, {"y.json", "new.json"}}), "y.json", write},
      {"joining a table", withForeign({old}), "x.store",
       join("x.store", ImportFormat::Table, "t.csv")},
      {"joining npm packages, written ahead", withForeign({ahead, aheadLog}), "x.store",
       join("x.store", ImportFormat::Npm, "n.json")},
      {"joining stops to JSON", withForeign({newJson}), "new.json",
       join("new.json", ImportFormat::Stops, "s.yaml")},
      {"migration", disk({{"x.store", "m.store"}}), "x.store", migrate},
      {"asking", disk({old}), "", ask},
      {"asking, written ahead", disk({ahead, aheadLog}), "x.store", ask},
      {"asking, left unfinished", disk({torn, tornLog}), "x.store", ask},
      {"asking JSON", disk({newJson}), "", askJson},
      {"drafts and selections", disk({newJson, old, {"old.json", "old.json"}}), "", draw},
      {"mistakes", disk({newJson, old, {"y.store", "new.store"}}), "", makeMistakes},
  };
}

FilePath quickFolder(const std::string& name) {
  const FilePath memory = "/dev/shm";
  const FilePath parent =
      std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
  return parent / ("evopath-" + name + "-" + std::to_string(getpid()));
}

Disk readDisk(const FilePath& folder) {
  Disk disk;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    disk[entry.path().filename()] = readFile(entry.path());
  }
  return disk;
}

void writeDisk(const Disk& disk, const FilePath& folder) {
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  for (const auto& [name, bytes] : disk) std::ofstream(folder / name, std::ios::binary) << bytes;
}

std::string contentOf(const FilePath& file) {
  static std::map<std::string, std::string> known;  // of databases with nothing beside them
  if (!std::filesystem::exists(file)) return "none";
  const std::string bytes = readFile(file);
  if (!bytes.starts_with("SQLite format 3")) return bytes;
  if (std::filesystem::exists(file.string() + "-wal") ||
      std::filesystem::exists(file.string() + "-journal")) {
    return contentOfDatabase(file);
  }
  const auto [entry, isNew] = known.try_emplace(bytes);
  if (isNew) entry->second = contentOfDatabase(file);
  return entry->second;
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
