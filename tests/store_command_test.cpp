// Stores through the real program.
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <set>
#include <thread>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "support/evopath_program.hpp"
#include "support/random_run.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

class StoreCommand : public EvopathProgram {
 protected:
  /// Runs the program in the folder and sends it a signal after a while. Whether it ended by the
  /// signal; otherwise it had ended in success.
  bool runAndSignal(const std::string& arguments, int signal,
                    std::chrono::microseconds after) const {
    std::string script = "cd '" + folder_.string() + "' && exec '" EVOPATH_PROGRAM "' " + arguments;
    std::string shell = "/bin/sh";
    std::string option = "-c";
    char* argv[] = {shell.data(), option.data(), script.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
      posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    }
    pid_t process = 0;
    EXPECT_EQ(posix_spawn(&process, argv[0], &actions, nullptr, argv, environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    std::this_thread::sleep_for(after);
    kill(process, signal);
    int status = 0;
    waitpid(process, &status, 0);
    const bool isHit = WIFSIGNALED(status) && WTERMSIG(status) == signal;
    EXPECT_TRUE(isHit || status == 0) << arguments << ": " << status;
    return isHit;
  }

  /// All that the commands below may have changed.
  std::string exportedAll() const {
    return exported("work.store") + exported("full.store") + read("work.json") + read("path.json");
  }

  std::string exported(const std::string& store) const {
    exportCatalogue(path(store), path("exported.json"));
    return read("exported.json");
  }
};

TEST_F(StoreCommand, SaysWhatItDoesAndWhatIsWrong) {
  make("small", contentOf(TestRepository("A1 A2 B1:A1 B2:A2 A1>2 B1>2")), false);
  make("more", contentOf(TestRepository("A3 A2>3")), false);
  make("asking", {{}, {}, Question{selection("A1"), selection("A2")}}, false);
  write("broken.json", "{\"metamodels\": [{\"name\": \"A\", \"version\": \"1.0\",\n,]}");
  write("note.txt", "not a store\n");
  const std::tuple<std::string, int, std::string> cases[] = {
      {"import small.json x.store", 0, "Imported 4 versions of metamodels and 2 hops.\n"},
      {"path x.store --from A=1.0,B=1.0 --to B=2.0", 0, "1 step, weight 3\n"},
      {"path x.store --question", 2, "x.store: the catalogue has no question"},
      {"add x.store more.json", 0, "Added 1 version of a metamodel and 1 hop.\n"},
      {"add x.store more.json", 2,
       "more.json: /metamodels/0: A@3.0.0 stands already in the store\n"},
      {"add x.store asking.json", 0, "Added 0 versions of metamodels and 0 hops.\n"},
      {"add x.store asking.json", 2, "asking.json: /question: the store has a question already\n"},
      {"path x.store --question", 0, "1 step, weight 2\n"},
      {"remove x.store A=2.0", 2, "for others depend on it:\n  B@2.0.0 depends on A 2.0.0"},
      {"remove x.store A=2.0 B=2.0.0", 0, "Removed 2 versions of metamodels and 3 hops.\n"},
      {"remove x.store A=2.0", 2,
       "there is no version 2.0.0 of metamodel \"A\"; the nearest known: 1.0.0 and 3.0.0.\n"},
      {"remove x.store C", 2, "there is no metamodel \"C\"; did you mean A or B?\n"},
      {"remove x.store =1", 2, "=1: must not be empty\n"},
      {"remove x.store", 2, "required"},
      {"export x.store x.json", 0, "Exported 3 versions of metamodels and 0 hops.\n"},
      {"export x.json y.json", 2, "x.json: is not a catalogue store: it is not a SQLite database"},
      {"export missing y.json", 2, "missing: cannot be opened: No such file or directory\n"},
      {"export x.store x.store", 2, "x.store: is a SQLite database, not a JSON catalogue"},
      {"export x.store none/y.json", 2, "cannot be written: No such file or directory\n"},
      {"import x.store y.store", 2, "x.store: is a SQLite database, not a JSON catalogue\n"},
      {"import broken.json x.store", 2, "broken.json: not JSON: parse error at line 2, column 1"},
      {"import missing.json x.store", 2, "missing.json: cannot be opened: No such file"},
      {"import small.json note.txt", 2,
       "note.txt: exists and is not a catalogue store; it is left"},
      {"import small.json .", 2, "is a directory, not a file\n"},
      {"path x.store --from A=1.0 --to A=3.0", 1, "No path"},
      {"path note.txt --question", 2, "note.txt: not JSON"},
      {"remove --help", 0, "Example: evopath remove"},
  };
  for (const auto& [arguments, status, message] : cases) {
    const auto [found, output] = run(arguments + " 2>&1");
    EXPECT_EQ(found, status) << arguments << ": " << output;
    EXPECT_NE(output.find(message), std::string::npos) << arguments << ": " << output;
  }
  EXPECT_EQ(read("note.txt"), "not a store\n");
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    EXPECT_NE(entry.path().extension(), ".partial");
  }
}

TEST_F(StoreCommand, ChangesRowsWholeOrNotAtAll) {
  make("x", contentOf(TestRepository("A1 Aspring~2 Aautumn~3 B1:A1 A1>2 A1>2!")));
  const auto change = [&](const std::string& rows, const std::string& options = "") {
    write("change.json", rows);
    return run("change x.store change.json" + options + " 2>&1");
  };
  const auto version = [](const std::string& fields) {
    return R"({"hops": [], "metamodels": [{"name": )" + fields + "}]}";
  };
  const std::string before = exported("x.store");
  const std::string bytes = read("x.store");
  const std::pair<std::string, std::string> refused[] = {
      {version(R"("C", "version": "1.0.0", "dependencies": [])"),
       "/metamodels/0/name: there is no metamodel \"C\""},
      {version(R"("A", "version": "4.0.0", "dependencies": [])"),
       "/metamodels/0/version: there is no version 4.0.0 of metamodel \"A\""},
      {version(R"("A", "version": "2.0.0", "dependencies": [])"), "there is no version 2.0.0"},
      {version(R"("A", "version": "1.0.0", "dependencies": [{"name": "Q", "range": "1.0.0"}])"),
       "/metamodels/0/dependencies/0/name: there is no metamodel \"Q\""},
      {version(R"("A", "version": "autumn", "semver": "2.0.0", "dependencies": [])"),
       "/metamodels/0/semver: "},
      {version(R"("A", "version": "spring", "dependencies": [])"),
       "/metamodels/0/semver: the hop of \"A\" from 1.0.0 to 2.0.0 would lead from or to no "
       "version"},
      {R"({"metamodels": [], "hops": [
         {"name": "A", "from": "1.0.0", "to": "2.0.0", "expensive": true},
         {"name": "A", "from": "1.0.0", "to": "3.0.0", "expensive": true}]})",
       "/hops/1: there is no hop of \"A\" from 1.0.0 to 3.0.0"},
      {R"({"metamodels": [], "hops": [
         {"name": "A", "from": "1.0.0", "to": "2.0.0", "expensive": true},
         {"name": "A", "from": "1.0.0", "to": "2.0.0", "expensive": false}]})",
       "/hops/1: the hop of \"A\" from 1.0.0 to 2.0.0 stands already at /hops/0"},
  };
  for (const auto& [rows, message] : refused) {
    for (const char* options : {"", " --dry-run"}) {
      const auto [status, output] = change(rows, options);
      EXPECT_EQ(status, 2) << rows << output;
      EXPECT_NE(output.find("change.json: "), std::string::npos) << output;
      EXPECT_NE(output.find(message), std::string::npos) << output;
      EXPECT_EQ(read("x.store"), bytes);
    }
  }
  // Equivalents may change places, for it is the whole that must be sound. Dependencies may lead
  // back.
  const std::string whole = R"({"metamodels": [
    {"name": "A", "version": "spring", "semver": "3.0.0", "dependencies": []},
    {"name": "A", "version": "autumn", "semver": "2.0.0", "dependencies": [], "note": "late"},
    {"name": "A", "version": "1.0.0", "dependencies": [
      {"name": "B", "range": "1.0.0"}, {"name": "B", "range": "1.0.0", "optional": true}]},
    {"name": "B", "version": "1.0.0", "dependencies": [
      {"name": "A", "range": ["1.0.0", "3.0.0"], "note": "why"}]}],
    "hops": [{"name": "A", "from": "1.0.0", "to": "2.0.0", "expensive": true, "note": "slow"}],
    "question": {"from": {"A": "1.0.0"}, "to": {"A": "autumn"}}})";
  const std::string counts = "hanged 4 versions of metamodels and 1 hop.\n";
  EXPECT_EQ(change(whole, " --dry-run"), std::pair(0, "Would have c" + counts));
  EXPECT_EQ(read("x.store"), bytes);
  EXPECT_EQ(files().size(), 4U) << "a file is left";
  EXPECT_EQ(change(whole), std::pair(0, "C" + counts));
  const std::string after = exported("x.store");
  std::string expected = R"({"metamodels": [{"name": "A", "version": "1.0.0", "dependencies": [
      {"name": "B", "range": "1.0.0"}, {"name": "B", "range": "1.0.0", "optional": true}]},
    {"name": "A", "version": "spring", "semver": "3.0.0", "dependencies": []},
    {"name": "A", "version": "autumn", "semver": "2.0.0", "dependencies": [], "note": "late"},
    {"name": "B", "version": "1.0.0", "dependencies": [
      {"name": "A", "range": ["1.0.0", "3.0.0"], "note": "why"}]}],
    "hops": [{"name": "A", "from": "1.0.0", "to": "2.0.0", "expensive": true, "note": "slow"},
             {"name": "A", "from": "1.0.0", "to": "2.0.0", "expensive": true, "note": "slow"}],
    "question": {"from": {"A": "1.0.0"}, "to": {"A": "autumn"}}})";
  write("expected.json", expected);
  ASSERT_EQ(run("import expected.json expected.store").first, 0);
  EXPECT_EQ(after, exported("expected.store"));
}

TEST_F(StoreCommand, TriesWhatItDoesAndWritesNothing) {
  make("x", contentOf(TestRepository("A1 A2 B1:A1 A1>2")));
  make("more", contentOf(TestRepository("A3 A2>3")), false);
  write("t.csv", "name,version\nT,1.0.0\n");
  write("note.txt", "not a store\n");
  const std::string bytes = read("x.store");
  const auto names = files();
  const std::tuple<std::string, int, std::string> cases[] = {
      {"import more.json x.store", 2, "there is no version 2.0.0 of metamodel \"A\"\n"},
      {"import x.json x.store", 0, "Would have imported 3 versions of metamodels and 1 hop.\n"},
      {"import x.json y.store", 0, "Would have imported 3 versions of metamodels and 1 hop.\n"},
      {"import x.json note.txt", 2, "note.txt: exists and is not a catalogue store"},
      {"import x.json none/y.store", 2, "cannot be written: No such file or directory\n"},
      {"import --from table t.csv x.store", 0,
       "Would have imported 1 version of a metamodel and 0 hops.\nWould have added 1 version"},
      {"import --from table --update t.csv x.json", 0,
       "Would have added 1 version of a metamodel and 0 hops.\n"},
      {"import --from table t.csv y.json", 0, "Would have imported 1 version"},
      {"add x.store more.json", 0, "Would have added 1 version of a metamodel and 1 hop.\n"},
      {"add x.store x.json", 2, "stands already in the store\n"},
      {"remove x.store A=1.0.0", 2, "B@1.0.0 depends on A 1.0.0"},
      {"remove x.store A=2.0", 0, "Would have removed 1 version of a metamodel and 1 hop.\n"},
      {"remove x.store --hop A=1.0..2.0", 0, "Would have removed 0 versions of metamodels and 1"},
      {"remove x.store --hop A=2.0..1.0", 2, "there is no hop of \"A\" from 2.0.0 to 1.0.0\n"},
      {"remove x.store --hop A=2.0", 2, "--hop A=2.0: must be NAME=FROM..TO\n"},
      {"remove x.store --hop A=1.0..7.0", 2, "there is no version 7.0.0 of metamodel \"A\""},
  };
  for (const bool isSealed : {false, true}) {
    chmod(path("").c_str(), isSealed ? 0555 : 0755);
    for (const auto& [arguments, status, message] : cases) {
      const auto [found, output] = run(arguments + " --dry-run 2>&1");
      EXPECT_EQ(found, status) << arguments << ": " << output;
      EXPECT_NE(output.find(message), std::string::npos) << arguments << ": " << output;
      EXPECT_EQ(read("x.store"), bytes) << arguments;
      EXPECT_EQ(files(), names) << arguments;
    }
  }
  chmod(path("").c_str(), 0755);
  EXPECT_EQ(run("remove x.store --hop A=1.0..2.0 2>&1").second,
            "Removed 0 versions of metamodels and 1 hop.\n");
  EXPECT_EQ(run("path x.store --from A=1.0 --to A=2.0").first, 1);
}

TEST_F(StoreCommand, ReadsWhereNothingCanBeWritten) {
  make("small", contentOf(TestRepository("A1 A2 A1>2")));
  std::filesystem::create_directory(path("sealed"));
  std::filesystem::copy_file(path("small.store"), path("sealed/small.store"));
  chmod(path("sealed/small.store").c_str(), 0444);
  chmod(path("sealed").c_str(), 0555);
  const auto [status, output] = run("path sealed/small.store --from A=1.0 --to A=2.0 2>&1");
  chmod(path("sealed").c_str(), 0755);
  EXPECT_EQ(status, 0) << output;
}

TEST_F(StoreCommand, LeavesTheOldStoreOrTheNewOneWhenKilled) {
  make("old", contentOf(TestRepository("A1 A2 A1>2")));
  const std::string versions = "..700";
  make("new", contentOf(TestRepository("B1" + versions + " C1" + versions + " D1" + versions)));
  std::filesystem::copy_file(path("old.store"), path("grown.store"));
  addToStore(path("grown.store"), path("new.json"));
  const std::string before = exported("old.store");
  const std::string replaced = exported("new.store");
  const std::string grown = exported("grown.store");
  const std::string store = read("old.store");
  write("killed.store", store);
  const auto all = files();
  std::chrono::microseconds latest(80'000);  // follows the time that this machine takes
  unsigned killed = 0;
  const RandomRun rounds(50);
  Random random(rounds.seed());
  for (int run = 0; killed < rounds.cases() && run < 1'000; ++run) {
    const bool adds = run % 3 == 2;
    write("killed.store", store);
    const auto after = latest * random.below(1'000) / 1'000;
    const bool hit = runAndSignal(
        adds ? "add killed.store new.json" : "import new.json killed.store", SIGKILL, after);
    if (hit) ++killed;
    latest = hit ? latest * 5 / 4 : latest * 2 / 3;
    const std::string left = exported("killed.store");
    ASSERT_TRUE(left == before || left == (adds ? grown : replaced))
        << "killed after " << after.count();
    importCatalogue(path("old.json"), path("killed.store"));
    EXPECT_EQ(exported("killed.store"), before);
    EXPECT_EQ(files(), all);
  }
  EXPECT_EQ(killed, rounds.cases());
}

TEST_F(StoreCommand, LeavesNothingBesideWhenInterrupted) {
  const std::string versions = "..700";
  make("large", contentOf(TestRepository("B1" + versions + " C1" + versions + " D1" + versions)));
  make("small", contentOf(TestRepository("A1 A2 A1>2")));
  const std::string store = read("small.store");
  const std::string full = read("large.store");
  const RandomRun rounds(12);
  Random random(rounds.seed());
  for (const char* command :
       {"import large.json work.store", "add work.store large.json", "remove full.store B C",
        "export full.store work.json", "check large.json",
        "path large.json --from B=1.0,C=1.0 --to B=700.0,C=700.0 --output path.json --json"}) {
    std::chrono::microseconds latest(80'000);  // follows the time that this machine takes
    std::set<std::string> outcomes;
    unsigned interrupted = 0;
    for (int run = 0; interrupted < rounds.cases() && run < 1'000; ++run) {
      write("work.store", store);
      write("full.store", full);
      write("work.json", "old");
      write("path.json", "old");
      const auto before = files();
      const int ending = random.chance(50) ? SIGINT : SIGTERM;
      const bool hit = runAndSignal(command, ending, latest * random.below(1'000) / 1'000);
      if (hit) ++interrupted;
      latest = hit ? latest * 5 / 4 : latest * 2 / 3;
      EXPECT_EQ(files(), before) << command;
      outcomes.insert(exportedAll());
    }
    EXPECT_EQ(interrupted, rounds.cases()) << command;
    EXPECT_LE(outcomes.size(), 2U) << command;  // all is done, or nothing
  }
}

}  // namespace
}  // namespace test
