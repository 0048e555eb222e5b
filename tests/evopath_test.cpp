// Runs the real program.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace test {
namespace {

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

class Evopath : public testing::Test {
 protected:
  Evopath() : folder_(std::filesystem::temp_directory_path() / std::to_string(getpid())) {
    std::filesystem::create_directories(folder_);
    write("small.json", R"({
      "metamodels": [
        {"name": "A", "version": "1.0.0", "dependencies": []},
        {"name": "A", "version": "2.0.0", "dependencies": []},
        {"name": "B", "version": "1.0.0", "dependencies": [{"name": "A", "range": ["1.0.0", "2.0.0"]}]},
        {"name": "B", "version": "2.0.0", "dependencies": [{"name": "A", "range": ["2.0.0", "3.0.0"]},
                                                           {"name": "C", "range": "spring"}]},
        {"name": "C", "version": "spring", "dependencies": []}],
      "hops": [{"name": "A", "from": "1.0.0", "to": "2.0.0", "expensive": false},
               {"name": "B", "from": "1.0.0", "to": "2.0.0", "expensive": true}]})");
  }
  ~Evopath() override { std::filesystem::remove_all(folder_); }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
  }

  /// Runs evopath with these arguments in the test's folder, which holds "small.json".
  Outcome run(const std::string& arguments) const {
    const std::string command = "cd '" + folder_.string() + "' && '" EVOPATH_PROGRAM "' " +
                                arguments + " >out.txt 2>err.txt </dev/null";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf("out.txt"),
            contentOf("err.txt")};
  }

 private:
  std::string contentOf(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(folder_ / name).rdbuf();
    return text.str();
  }

  std::filesystem::path folder_;
};

TEST_F(Evopath, PrintsStepsMovesAndWeights) {
  const Outcome outcome = run("path small.json --from A=1.0.0,B=1.0.0 --to B=2.0.0");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "Step 1, weight 1000000002\n"
            "  A  1.0.0 -> 2.0.0\n"
            "  B  1.0.0 -> 2.0.0  expensive\n"
            "  C         + spring\n"
            "1 step, weight 1000000002\n");
  EXPECT_EQ(outcome.err, "");
}

TEST_F(Evopath, PrintsJsonForPrograms) {
  const Outcome outcome = run("path --json small.json --from A=1.0.0 --from B=1.0 --to B=2.0.0");
  EXPECT_EQ(outcome.status, 0);
  std::string text;
  for (const char character : outcome.out) {
    if (character != ' ' && character != '\n') text += character;
  }
  EXPECT_EQ(text, R"({"found":true,"weight":1000000002,"steps":[{"weight":1000000002,"hops":[)"
                  R"({"name":"A","from":"1.0.0","to":"2.0.0","expensive":false},)"
                  R"({"name":"B","from":"1.0.0","to":"2.0.0","expensive":true}],)"
                  R"("broughtIn":[{"name":"C","version":"spring"}]}]})");
  EXPECT_EQ(run("path --json small.json --from A=2.0.0 --to A=1.0.0").out,
            "{\n  \"found\": false,\n  \"reason\": \"no sequence of steps leads there.\"\n}\n");
}

TEST_F(Evopath, ShowsItsReasoningOnStandardError) {
  const Outcome outcome = run("path small.json --trace --from A=1.0.0 --to A=2.0.0");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out.find("Attempting"), std::string::npos);
  for (const char* record : {"[4] Attempting Lockstep {Hop {A@1.0.0->2.0.0}}", "[4] Reached target",
                             "[8] Emplace Path to cache:"}) {
    EXPECT_NE(outcome.err.find(std::string("tarn::evolution::pathfinder ") + record + "\n"),
              std::string::npos)
        << record;
  }
}

TEST_F(Evopath, AnswersTheQuestionOfARealCatalogue) {
  const Outcome outcome = run("path '" CATALOGUE_FILE "' --question");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.out.find("\n9 steps, weight 27\n"), std::string::npos) << outcome.out;
}

TEST_F(Evopath, SaysWhatIsWrong) {
  write("broken.json", "{\n\"metamodels\": [,]}");
  write("cyclic.json", R"({"hops": [], "metamodels": [{"name": "A", "version": "1.0.0",
        "dependencies": [{"name": "A", "range": "1.0.0"}]}]})");
  const struct {
    std::string arguments;
    int status;
    std::string message;  // part of what is printed
  } cases[] = {
      {"path small.json --from A=2.0.0 --to A=1.0.0", 1,
       "No path: no sequence of steps leads there."},
      {"path small.json --from A=1.0.0,B=2.0.0 --to A=2.0.0", 1,
       "No path: the versions to start from cannot stand together."},
      {"path small.json --from A=1.0.0 --to A=1.0.0,B=2.0.0", 1,
       "No path: the versions to reach cannot stand together."},
      {"path small.json --from A=1.0.0 --to A=1.0.0", 0, "Nothing to do"},
      {"path small.json --from A=1.0.0 --to A=7.0.0", 2, "no version 7.0.0 of metamodel \"A\""},
      {"path small.json --from Q=1.0.0 --to A=2.0.0", 2, "no version 1.0.0 of metamodel \"Q\""},
      {"path small.json --from A --to A=2.0.0", 2, "--from A: must be NAME=VERSION"},
      {"path small.json --from A=1.0.0,A=2.0.0 --to A=2.0.0", 2, "A=2.0.0: the name stands twice"},
      {"path small.json --from =1 --to A=2.0.0", 2, "--from =1: must not be empty"},
      {"path small.json --from 'A=\xff' --to A=2.0.0", 2, "not UTF-8"},
      {"path small.json --from A=1.0.0", 2, "--to"},
      {"path small.json", 2, "--question"},
      {"path small.json --question --from A=1.0.0 --to A=2.0.0", 2, "--question"},
      {"path small.json --question", 2, "small.json: the catalogue has no question"},
      {"path missing.json --question", 2, "missing.json: cannot be opened: No such file"},
      {"path broken.json --question", 2, "broken.json: not JSON: parse error at line 2, column 16"},
      {"path cyclic.json --question", 2,
       "cyclic.json: /metamodels/0/dependencies: the dependencies form a cycle: A@1.0.0 -> "
       "A@1.0.0"},
      {"path", 2, "catalogue"},
      {"", 2, "A command is required"},
      {"fly", 2, "fly"},
      {"path --help", 0, "Example: evopath path"},
  };
  for (const auto& [arguments, status, message] : cases) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, status) << arguments;
    const std::string& printed = status == 2 ? outcome.err : outcome.out;
    EXPECT_NE(printed.find(message), std::string::npos) << arguments << ": " << printed;
  }
}

}  // namespace
}  // namespace test
