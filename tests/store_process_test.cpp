// Stores that several processes use at once, this library's and others'.
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <atomic>
#include <set>
#include <thread>

#include "catalogue/check/check.hpp"
#include "catalogue/check/open_draft.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "support/host_program.hpp"
#include "support/store_folder.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

class StoreProcesses : public StoreFolder {
 protected:
  StoreProcesses() { make("x", contentOf(TestRepository("A1..3 B1:A[1,3)"))); }

  std::string at(const std::string& name) const { return " " + path(name).string(); }

  /// A catalogue of one version, for adding.
  void makeOne(const std::string& name, const std::string& metamodel) const {
    write(name, R"({"metamodels": [{"name": ")" + metamodel +
                    R"(", "version": "1.0.0", "dependencies": []}], "hops": []})");
  }

  /// How many versions the store holds, which must be sound.
  std::size_t soundCount(const std::string& name) const {
    const CatalogueDraft draft = readDraft(path(name));
    for (const Finding& finding : check(draft)) {
      EXPECT_NE(severityOf(finding.code), Severity::Error) << finding.message;
    }
    return draft.metamodels.size();
  }

  static constexpr std::size_t smallCount = 4;
};

bool isError(const std::string& answer, const std::string& part) {
  return answer.starts_with("error: ") && answer.find(part) != std::string::npos;
}

TEST_F(StoreProcesses, AHostThatOpensAStoreAgainLosesNothing) {
  HostProgram host;
  HostProgram other;
  ASSERT_EQ(host.tell("open" + at("x.store")), "ok");
  for (const std::string& once :
       {"open" + at("x.store"), "export" + at("x.store") + at("y.json")}) {
    EXPECT_EQ(host.tell(once), "ok");
    EXPECT_TRUE(isError(other.tell("sql" + at("x.store") + " DELETE FROM hops"), "locked"));
  }
  EXPECT_EQ(other.tell("remove" + at("x.store") + " B"), "ok");
  EXPECT_EQ(other.tell("remove" + at("x.store") + " A"), "ok");
  EXPECT_EQ(host.tell("count 0"), "4");
  EXPECT_EQ(host.tell("count 1"), "4");
  EXPECT_EQ(host.tell("read" + at("x.store")), "0");
  EXPECT_EQ(other.tell("import" + at("x.json") + at("x.store")), "ok");
  EXPECT_EQ(host.tell("count 0"), "4");
  EXPECT_EQ(files(), (std::set<std::string>{"x.json", "x.store", "y.json"}));
}

TEST_F(StoreProcesses, EveryAddThatSucceededIsThere) {
  constexpr int hosts = 4;
  constexpr int adds = 12;
  std::atomic<std::size_t> added = 0;
  std::vector<std::thread> threads;
  for (int number = 0; number < hosts; ++number) {
    threads.emplace_back([&, number] {
      HostProgram host;
      host.tell("open" + at("x.store"));
      const std::string count = host.tell("count 0");
      for (int i = 0; i < adds; ++i) {
        const std::string name = "N" + std::to_string(number * adds + i);
        makeOne(name + ".json", name);
        const std::string answer = host.tell("add" + at("x.store") + at(name + ".json"));
        EXPECT_TRUE(answer == "ok" || isError(answer, "is being written")) << answer;
        if (answer == "ok") ++added;
        host.tell("open" + at("x.store"));
      }
      EXPECT_EQ(host.tell("count 0"), count);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_GT(added, 0U);
  EXPECT_EQ(soundCount("x.store"), smallCount + added);
}

TEST_F(StoreProcesses, AnImportIsNotDisturbedByLeftoversNorByReaders) {
  HostProgram writer;
  writer.tell("sql" + at("x.store") +
              " PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0; DELETE FROM metamodels");
  writer.kill();
  EXPECT_EQ(writer.answer(), "");
  ASSERT_TRUE(files().contains("x.store-wal"));
  std::filesystem::remove(path("x.store"));
  importCatalogue(path("x.json"), path("x.store"));
  EXPECT_EQ(soundCount("x.store"), smallCount);
  EXPECT_EQ(files(), (std::set<std::string>{"x.json", "x.store"}));

  std::atomic<bool> isOver = false;
  std::vector<std::thread> readers;
  for (int number = 0; number < 3; ++number) {
    readers.emplace_back([&] {
      HostProgram reader;
      while (!isOver) EXPECT_EQ(reader.tell("read" + at("x.store")), "4");
    });
  }
  for (int i = 0; i < 50; ++i) {
    EXPECT_NO_THROW(importCatalogue(path("x.json"), path("x.store")));
  }
  isOver = true;
  for (std::thread& reader : readers) reader.join();
}

TEST_F(StoreProcesses, OtherProgramsAndThisOneLoseNoChange) {
  for (const char* mode : {"DELETE", "WAL"}) {
    const bool keepsOpen = mode[0] == 'D';
    importCatalogue(path("x.json"), path("x.store"));
    std::atomic<bool> isOver = false;
    std::size_t inserted = 0;
    std::thread other([&] {
      HostProgram program;
      for (int i = 0; !isOver || inserted == 0; ++i) {
        const std::string name = "'F" + std::to_string(i) + "'";
        const std::string answer = program.tell(
            "sql" + at("x.store") + " PRAGMA busy_timeout = 2000; PRAGMA journal_mode = " + mode +
            "; BEGIN IMMEDIATE; INSERT INTO names (name) VALUES (" + name +
            "); INSERT INTO metamodels (position, name, version) SELECT (SELECT max(position) + 1 "
            "FROM metamodels), id, 'one' FROM names WHERE name = " +
            name + "; COMMIT");
        EXPECT_TRUE(!isError(answer, "") || isError(answer, "locked") ||
                    isError(answer, "readonly"))
            << answer;
        if (!isError(answer, "")) ++inserted;
        if (!keepsOpen) program.tell("unsql");
      }
    });
    std::size_t added = 0;
    for (int i = 0; i < (keepsOpen ? 30 : 6); ++i) {
      makeOne("one.json", "L" + std::to_string(i));
      const std::string error =
          catalogueErrorOf(path("x.store"), [&] { addToStore(path("x.store"), path("one.json")); });
      EXPECT_TRUE(error == "no error" || error == "is in use by another program") << error;
      if (error == "no error") ++added;
    }
    isOver = true;
    other.join();
    EXPECT_GT(added, 0U);
    EXPECT_EQ(soundCount("x.store"), smallCount + added + inserted) << mode;
  }
}

TEST_F(StoreProcesses, WhatOthersHaveMadeOfAStoreStays) {
  HostProgram other;
  std::size_t count = smallCount;
  for (const char* statements :
       {"PRAGMA page_size = 512; VACUUM", "PRAGMA auto_vacuum = FULL; VACUUM",
        "PRAGMA journal_mode = PERSIST; DELETE FROM question", "ANALYZE",
        "CREATE TABLE notes (text); INSERT INTO notes VALUES ('mine')"}) {
    EXPECT_FALSE(isError(other.tell("sql" + at("x.store") + " " + statements), "")) << statements;
    other.tell("unsql");
    makeOne("one.json", "N" + std::to_string(++count));
    addToStore(path("x.store"), path("one.json"));
    EXPECT_EQ(soundCount("x.store"), count) << statements;
    EXPECT_EQ(other.tell("sql" + at("x.store") + " PRAGMA integrity_check"), "ok");
    other.tell("unsql");
    EXPECT_EQ(files(), (std::set<std::string>{"one.json", "x.json", "x.store"})) << statements;
  }
  EXPECT_EQ(other.tell("sql" + at("x.store") + " SELECT text FROM notes"), "mine");
  EXPECT_EQ(
      catalogueErrorOf(path("x.store"), [&] { importCatalogue(path("x.json"), path("x.store")); }),
      "holds a table of another program, notes; it is left alone");
}

TEST_F(StoreProcesses, AReaderWithFewerRightsIsInNobodysWay) {
  constexpr unsigned ownerId = 65533;  // whoever that is
  const auto become = [](HostProgram& host, unsigned user) {
    ASSERT_EQ(host.tell("user " + std::to_string(user)), "ok");
  };
  makeOne("first.json", "F");
  makeOne("second.json", "S");
  chmod(folder_.c_str(), 0777);
  if (geteuid() == 0) {
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      ASSERT_EQ(chown(entry.path().c_str(), ownerId, ownerId), 0);
    }
  }
  HostProgram owner;
  become(owner, ownerId);
  const auto before = files();
  HostProgram reader;
  become(reader, ownerId + 1);
  EXPECT_EQ(reader.tell("open" + at("x.store")), "ok");
  EXPECT_EQ(files(), before);
  EXPECT_EQ(owner.tell("add" + at("x.store") + at("first.json")), "ok");
  EXPECT_EQ(reader.tell("count 0"), "4");
  EXPECT_EQ(reader.tell("read" + at("x.store")), "5");
  EXPECT_EQ(files(), before);

  owner.tell("sql" + at("x.store") + " PRAGMA journal_mode = WAL");
  owner.tell("unsql");
  EXPECT_EQ(reader.tell("read" + at("x.store")), "5");
  EXPECT_EQ(owner.tell("add" + at("x.store") + at("second.json")), "ok");
  EXPECT_EQ(files(), before);
  EXPECT_EQ(reader.tell("read" + at("x.store")), "6");
}

/// Has the system's lock of a file, which it makes.
class Flock {
 public:
  explicit Flock(const std::filesystem::path& file)
      : descriptor_(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
    EXPECT_EQ(flock(descriptor_, LOCK_EX), 0);
  }
  Flock(const Flock&) = delete;
  Flock& operator=(const Flock&) = delete;
  ~Flock() { close(descriptor_); }

 private:
  const int descriptor_;
};

TEST_F(StoreProcesses, AWriterWaitsForOthersAndThenSaysSo) {
  for (const char* name : {"y.store", "z.store"}) importCatalogue(path("x.json"), path(name));
  makeOne("one.json", "N");
  const Flock library(path(".x.store.lock"));
  HostProgram foreign;
  ASSERT_EQ(foreign.tell("sql" + at("y.store") + " BEGIN IMMEDIATE"), "ok");
  HostProgram hosts[4];
  auto briefly = std::make_unique<Flock>(path(".z.store.lock"));
  hosts[0].begin("import" + at("x.json") + at("x.store"));
  hosts[1].begin("add" + at("y.store") + at("one.json"));
  hosts[2].begin("add" + at("z.store") + at("one.json"));
  hosts[3].begin("export" + at("x.store") + at("z.store"));
  EXPECT_TRUE(isError(hosts[3].answer(), "left alone"));
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  briefly.reset();
  EXPECT_EQ(hosts[2].answer(), "ok");
  EXPECT_TRUE(isError(hosts[0].answer(), path("x.store").string() + ": is being written"));
  EXPECT_TRUE(isError(hosts[1].answer(), path("y.store").string() + ": is in use"));
  EXPECT_EQ(hosts[0].tell("read" + at("x.store")), "4");
}

TEST_F(StoreProcesses, ALinkStandsForWhatItLeadsTo) {
  std::filesystem::create_directory(path("links"));
  for (const char* name : {"x.store", "new.store", "new.json"}) {
    std::filesystem::create_symlink("../" + std::string(name), path("links") / name);
  }
  makeOne("one.json", "N");
  chmod(path("x.store").c_str(), 0640);
  HostProgram writer;
  EXPECT_EQ(writer.tell("sql" + at("x.store") +
                        " PRAGMA journal_mode = WAL; DELETE FROM metamodels WHERE name = 2"),
            "wal");
  HostProgram host;
  EXPECT_EQ(host.tell("read" + at("links/x.store")), "3");
  EXPECT_EQ(writer.tell("unsql"), "ok");
  EXPECT_EQ(host.tell("add" + at("links/x.store") + at("one.json")), "ok");
  EXPECT_EQ(host.tell("import" + at("x.json") + at("links/new.store")), "ok");
  EXPECT_EQ(host.tell("export" + at("new.store") + at("links/new.json")), "ok");
  EXPECT_EQ(read("new.json"), read("x.json"));
  EXPECT_EQ(soundCount("x.store"), 4U);
  EXPECT_EQ(std::filesystem::status(path("x.store")).permissions(), std::filesystem::perms(0640));
  EXPECT_EQ(files(), (std::set<std::string>{"links", "new.json", "new.store", "one.json", "x.json",
                                            "x.store"}));
  for (const auto& entry : std::filesystem::directory_iterator(path("links"))) {
    EXPECT_TRUE(entry.is_symlink());
  }
}

}  // namespace
}  // namespace test
