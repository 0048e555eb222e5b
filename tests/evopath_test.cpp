// Runs the real program.
#include <gtest/gtest.h>

#include "support/evopath_program.hpp"

namespace test {
namespace {

using namespace std::string_literals;

/// Runs evopath in a folder that holds "small.json".
class Evopath : public EvopathProgram {
 protected:
  Evopath() {
    make("small", contentOf(TestRepository("A1..2 B1:A1 B2:A2+Cspring Cspring B1>2!")), false);
  }
};

TEST_F(Evopath, PrintsStepsMovesAndWeights) {
  const auto [status, output] = run("path small.json --from A=1.0.0,B=1.0.0 --to B=2.0.0 2>&1");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(output,
            "Start\n"
            "  A  1.0.0\n"
            "  B  1.0.0\n"
            "Step 1, weight 1 expensive, 2\n"
            "  A  1.0.0 -> 2.0.0\n"
            "  B  1.0.0 -> 2.0.0  expensive\n"
            "  C         + spring\n"
            "    B 1.0.0 needs A 1.0.0, not 2.0.0\n"
            "    B 2.0.0 needs A 2.0.0, not 1.0.0\n"
            "    B 2.0.0 needs C spring, which enters\n"
            "1 step, weight 1 expensive, 2\n");
}

TEST_F(Evopath, PrintsJsonForPrograms) {
  auto [status, output] = run("path --json small.json --from A=1.0.0 --from B=1.0 --to B=2.0.0");
  EXPECT_EQ(status, 0);
  std::erase_if(output, [](char character) { return character == ' ' || character == '\n'; });
  EXPECT_EQ(output, R"({"form":1,"found":true,"question":{"from":{"A":"1.0.0","B":"1.0.0"},)"
                    R"("to":{"B":"2.0.0"}},"weight":1000000002,"start":{"A":"1.0.0","B":"1.0.0"},)"
                    R"("end":{"A":"2.0.0","B":"2.0.0","C":"spring"},)"
                    R"("steps":[{"weight":1000000002,"hops":[)"
                    R"({"name":"A","from":"1.0.0","to":"2.0.0","expensive":false},)"
                    R"({"name":"B","from":"1.0.0","to":"2.0.0","expensive":true}],)"
                    R"("broughtIn":[{"name":"C","version":"spring"}],"ties":[)"
                    R"({"mover":"A","companion":"B","dependent":{"name":"B","version":"1.0.0"},)"
                    R"("needs":{"name":"A","range":"1.0.0"},"refused":"2.0.0"},)"
                    R"({"mover":"B","companion":"A","dependent":{"name":"B","version":"2.0.0"},)"
                    R"("needs":{"name":"A","range":"2.0.0"},"refused":"1.0.0"},)"
                    R"({"mover":"B","companion":"C","dependent":{"name":"B","version":"2.0.0"},)"
                    R"("needs":{"name":"C","range":"spring"},"refused":null}],)"
                    R"("bundles":[["A","B","C"]]}]})");
}

TEST_F(Evopath, AsksUnderConditions) {
  make("way",
       contentOf(TestRepository("A1 A1.1.0-rc.1 A1.1 A2 A3 "
                                "A1>1.1.0-rc.1 A1>1.1 A1.1.0-rc.1>2 A1.1>2!")),
       false);
  const std::string ask = "path way.json --from A=1.0.0 --to ";
  const std::string start = "Start\n  A  1.0.0\n";
  const std::string first = start + "Step 1, weight 2\n  A  1.0.0      -> 1.1.0-rc.1\n";
  const std::string over =
      first + "Step 2, weight 2\n  A  1.1.0-rc.1 -> 2.0.0\n2 steps, weight 4\n";
  const std::string dear =
      start +
      "Step 1, weight 2\n  A  1.0.0 -> 1.1.0\n"
      "Step 2, weight 1 expensive\n  A  1.1.0 -> 2.0.0  expensive\n2 steps, weight 1 expensive, "
      "2\n";
  const std::string none = "No path keeps to the conditions.\n";
  const std::tuple<std::string, int, std::string> cases[] = {
      {"A=newest", 0, over},
      {"A=latest", 1, none},
      {"'A=>1.1 <3'", 0, over},
      {"A=2.0.0 --avoid A=1.1.0-rc.1", 0, dear},
      {"A=2.0.0 --via A=1.1.0", 0, dear},
      {"A=2.0.0 --via A=1.1.0 --avoid A=1.1.0", 1, none},
      {"A=2.0.0 --pin A", 1, none},
      {"A=2.0.0 --pin A=1.1.0-rc.1", 0, dear},
      {"A=2.0.0 --direction backward", 1, none},
      {"A=2.0.0 --alternatives 5", 0, "Path 1\n" + over + "\nPath 2\n" + dear},
      {"A=2.0.0 --avoid B=1", 2, "evopath: --avoid B=1: there is no such metamodel\n"},
      {"A=2.0.0 --avoid A", 2, "evopath: --avoid A: must be NAME=RANGE\n"},
      {"A=2.0.0 --via A=7", 2, "evopath: --via A=7: there is no such version\n"},
      {"A=9", 2,
       "evopath: there is no version 9 of metamodel \"A\" to reach; the nearest known: "
       "2.0.0 and 3.0.0.\n"},
  };
  for (const auto& [asked, status, said] : cases) {
    EXPECT_EQ(run(ask + asked + " 2>&1"), std::pair(status, said)) << asked;
  }
}

TEST_F(Evopath, AnswersForASourceThatCannotBeLinked) {
  make("blocked", contentOf(TestRepository("C9 B2 B3:C[1,2) A1:B[2,4) A2 A1>2")), false);
  const std::string ask = "path blocked.json --from A=1.0.0 --to A=2.0.0 --direction forward";
  EXPECT_EQ(run(ask + " 2>&1"),
            std::pair(1, std::string("No path: what it is to start from cannot be linked.\n")));
  EXPECT_EQ(run(ask + " --json 2>&1").first, 1);
  // Of what is there already nothing has to be linked, in whatever form it is told.
  for (const char* form : {"text", "json", "svg", "mermaid"}) {
    EXPECT_EQ(
        run(std::string("path blocked.json --from B=3.0.0 --to B=3.0.0 --format ") + form).first,
        0);
  }
}

TEST_F(Evopath, ShowsItsReasoningOnStandardError) {
  const std::string question = "path small.json --trace --from A=1.0.0 --to A=2.0.0";
  EXPECT_EQ(run(question + " 2>/dev/null").second,
            "Start\n  A  1.0.0\nStep 1, weight 2\n  A  1.0.0 -> 2.0.0\n1 step, weight 2\n");
  const std::string reasoning = run(question + " 2>&1 >/dev/null").second;
  for (const char* record : {"[4] Attempting Lockstep {Hop {A@1.0.0->2.0.0}}",
                             "[4]   Hop produced 1 candidates:", "[8] Emplace Path to cache:"}) {
    EXPECT_NE(reasoning.find(std::string("tarn::evolution::pathfinder ") + record + "\n"),
              std::string::npos)
        << reasoning;
  }
}

TEST_F(Evopath, ChecksCatalogues) {
  make("doubtful", contentOf(TestRepository("A1:B[2,3) A2 B1:B[2,2)")), false);
  const std::string note =
      "note no-hops: metamodels without hops\n"
      "  /metamodels/0  none of the 2 versions of \"A\" has a hop\n";
  const std::string warnings =
      "warning empty-range: ranges that no version can lie in\n"
      "  /metamodels/2/dependencies/0/range  B@1.0.0 depends on \"B\" [2.0.0, 2.0.0), a range that "
      "no version can lie in\n"
      "warning unsatisfied-dependency: dependencies that no version satisfies\n"
      "  /metamodels/0/dependencies/0/range  A@1.0.0 depends on \"B\" [2.0.0, 3.0.0), which no "
      "version in the catalogue satisfies\n";
  EXPECT_EQ(run("check doubtful.json"),
            std::pair(1, warnings + note + "doubtful.json: 0 errors, 2 warnings, 1 note\n"));
  EXPECT_EQ(run("check doubtful.json --severity warning"),
            std::pair(1, warnings + "doubtful.json: 0 errors, 2 warnings, 1 note\n"));
  EXPECT_EQ(run("check small.json"), std::pair(0, "small.json: 0 errors, 0 warnings, 0 notes\n"s));
  write("broken.json", "{\n\"hops\": [], \"metamodels\": [{]}");
  auto [status, output] = run("check broken.json --json");
  EXPECT_EQ(status, 2);
  std::erase_if(output, [](char character) { return character == ' ' || character == '\n'; });
  EXPECT_TRUE(output.starts_with(
      R"({"catalogue":"broken.json","errors":1,"warnings":0,"notes":0,"findings":[{"code":"not-json",)"
      R"("severity":"error","place":"","message":"notJSON:parseerroratline2,column29)"))
      << output;
  EXPECT_TRUE(output.ends_with(R"("related":[]}]})"));
  EXPECT_EQ(run("check missing.json 2>&1").second,
            "evopath: missing.json: cannot be opened: No such file or directory\n");
  EXPECT_EQ(run("check small.json --severity all 2>/dev/null").first, 2);
}

TEST_F(Evopath, SaysWhatIsWrong) {
  write("broken.json", "{\n\"metamodels\": [,]}");
  const std::tuple<std::string, int, std::string> cases[] = {
      {"path small.json --from A=2 --to A=1.0", 2, "no version 2 of metamodel \"A\""},
      {"path small.json --from A=2.0 --to A=1.0", 1, "No path: no hops lead to A 1.0.0."},
      {"path small.json --from A=1.0,B=2.0 --to A=2.0", 1,
       "No path: the versions to start from cannot stand together."},
      {"path small.json --from A=1.0 --to A=1.0,B=2.0", 1,
       "No path: the versions to reach cannot stand together."},
      {"path small.json --from A=1.0 --to A=1.0", 0, "Nothing to do"},
      {"path small.json --from A --to A=2.0", 2, "--from A: must be NAME=VERSION or @FILE"},
      {"path small.json --from A=1.0,A=2.0 --to A=2.0", 2, "A=2.0: the name A stands twice"},
      {"path small.json --from =1 --to A=2.0", 2, "--from =1: must not be empty"},
      {"path small.json --from 'A=\xff' --to A=2.0", 2, "not UTF-8"},
      {"path small.json --from A=1.0", 2, "--to"},
      {"path small.json", 2, "--question"},
      {"path small.json --question --from A=1.0 --to A=2.0", 2, "--question"},
      {"path small.json --question", 2, "small.json: the catalogue has no question"},
      {"path missing.json --question", 2, "missing.json: cannot be opened: No such file"},
      {"path broken.json --question", 2, "broken.json: not JSON: parse error at line 2, column 16"},
      {"", 0, "Subcommands:"},
      {"explain small.json --from A=1.0 --to A=2.0 --budget -1", 2,
       "--budget -1: must be a whole number"},
      {"path small.json --from A=1.0 --to A=2.0 --format script", 2, "--template"},
      {"path small.json --from A=1.0 --to A=2.0 --format script --template 'go {when}'", 2,
       "{when} is none of"},
      {"path small.json --from A=1.0 --to A=2.0 --format script --template 'go } {to}'", 2,
       "a single brace"},
      {"path --help", 0, "Example: evopath path"},
  };
  for (const auto& [arguments, status, message] : cases) {
    const auto [found, output] =
        run(arguments + (status == 2 ? " 2>&1 >/dev/null" : " 2>/dev/null"));
    EXPECT_EQ(found, status) << arguments;
    EXPECT_NE(output.find(message), std::string::npos) << arguments << ": " << output;
  }
}

}  // namespace
}  // namespace test
