// Runs the commands that show and draw, with the real program.
#include <gtest/gtest.h>

#include "support/evopath_program.hpp"

namespace test {
namespace {

/// A 2.0.0 and B can stand with either C; D has hops both ways; Z's versions are texts.
class EvopathBrowse : public EvopathProgram {
 protected:
  EvopathBrowse() {
    auto content =
        contentOf(TestRepository("A2:C[1,3) A1:C1 C1 C2 D1 D2 D3:Znone Zspring~1.5 "
                                 "A1>2! C1>2 D2>1 D2>3 D1>2"));
    content.question = {selection("A1"), selection("A2")};
    make("small", content, false);
  }

  void expect(const std::string& arguments, const std::string& output, int status = 0) {
    EXPECT_EQ(run(arguments + " 2>&1"), std::pair(status, output)) << arguments;
  }
};

TEST_F(EvopathBrowse, StepsByDirectionAndWeight) {
  expect("steps small.json --at C=1.0,D=1.0",
         "Forward 1, weight 2\n  C  1.0.0 -> 2.0.0\n"
         "Forward 2, weight 2\n  D  1.0.0 -> 2.0.0\n");
  expect("steps small.json --at C=1.0,D=1.0 --all",
         "Step 1, forward, weight 2\n  C  1.0.0 -> 2.0.0\n"
         "Step 2, forward, weight 2\n  D  1.0.0 -> 2.0.0\n"
         "Step 3, forward, weight 3\n  C  1.0.0 -> 2.0.0\n  D  1.0.0 -> 2.0.0\n");
  expect("steps small.json --at A=1.0 --all",
         "Step 1, forward, weight 1 expensive\n  A  1.0.0 -> 2.0.0  expensive\n"
         "Step 2, forward, weight 1 expensive, 2\n  A  1.0.0 -> 2.0.0  expensive\n"
         "  C  1.0.0 -> 2.0.0\n");
  expect(
      "steps small.json --at D=2.0",
      "Backward 1, weight 2\n  D  2.0.0 -> 1.0.0\n"
      "Left out: D 3.0.0 cannot be linked: D 3.0.0 needs Z none, which no version satisfies; the "
      "nearest known: spring.\n");
  expect("steps small.json --at D=1.0 --direction backward", "No step leads out of it.\n");
  expect("steps small.json --at A=2.0 --direction forward",
         "Baseline 1 of 2: A 2.0.0, C 1.0.0\n"
         "Forward 1, weight 2\n  C  1.0.0 -> 2.0.0\n\n"
         "Baseline 2 of 2: A 2.0.0, C 2.0.0\nNo step leads out of it.\n");
  const auto json = run("steps small.json --json --direction backward --at D=2.0").second;
  EXPECT_NE(json.find(R"("direction": "backward")"), std::string::npos) << json;
  EXPECT_EQ(json.find("forward"), std::string::npos);
}

TEST_F(EvopathBrowse, StepsOfManyThatCanMove) {
  std::string metamodels;
  std::string hops;
  std::string at;
  for (int i = 0; i < 70; ++i) {
    const std::string name = "M" + std::to_string(i);
    for (const char* version : {"1.0", "2.0"}) {
      metamodels += (metamodels.empty() ? "" : ",") + (R"({"name": ")" + name) +
                    R"(", "dependencies": [], "version": ")" + version + "\"}";
    }
    hops += (i == 0 ? "" : ",") + (R"({"name": ")" + name) +
            R"(", "from": "1.0", "to": "2.0", "expensive": false})";
    at += (i == 0 ? "" : ",") + name + "=1.0";
  }
  write("wide.json", R"({"metamodels": [)" + metamodels + R"(], "hops": [)" + hops + "]}");
  EXPECT_TRUE(run("steps wide.json --at " + at)
                  .second.ends_with("Forward 70, weight 2\n  M9   1.0.0 -> 2.0.0\n"));
  expect("steps wide.json --all --limit 2 --at " + at + " --json | wc -l", "2\n");
  expect("steps wide.json --limit 1 --at M0=1.0,M1=1.0",
         "Forward 1, weight 2\n  M0  1.0.0 -> 2.0.0\nThere may be more: the limit was reached.\n",
         3);
  EXPECT_EQ(run("steps wide.json --limit 2 --at M0=1.0,M1=1.0").first, 0);
  expect(
      "steps wide.json --limit -1 --at M0=1.0",
      "--limit -1: must be a whole number, such as 1000\nRun with --help for more information.\n",
      2);
  EXPECT_EQ(run("steps wide.json --direction backward --at " + at).first, 0);
}

TEST_F(EvopathBrowse, ShowsMetamodelsVersionsAndBaselines) {
  expect("show small.json",
         "Metamodel  Versions\n"
         "A                 2  1.0.0 .. 2.0.0\n"
         "C                 2  1.0.0 .. 2.0.0\n"
         "D                 3  1.0.0 .. 3.0.0\n"
         "Z                 1  spring\n");
  expect("show small.json A D=3.0 Z=1.5",
         "A\n"
         "  1.0.0\n"
         "    needs    C 1.0.0\n"
         "    to       2.0.0  expensive\n"
         "  2.0.0\n"
         "    needs    C [1.0.0, 3.0.0)\n"
         "    from     1.0.0  expensive\n"
         "D\n"
         "  3.0.0\n"
         "    needs    Z none\n"
         "    from     2.0.0\n"
         "    linked   not at all: what it needs cannot stand together\n"
         "Z\n"
         "  spring = 1.5.0\n"
         "    linked   alone\n");
  expect("show small.json --at A=2.0,D=1.0",
         "Baseline 1 of 2\n  A  2.0.0\n+ C  1.0.0\n  D  1.0.0\n"
         "Baseline 2 of 2\n  A  2.0.0\n+ C  2.0.0\n  D  1.0.0\n");
  auto json = run("show small.json A=2.0 --json").second;
  std::erase_if(json, [](char character) { return character == ' ' || character == '\n'; });
  EXPECT_EQ(json,
            R"({"metamodels":[{"name":"A","versions":[{"version":"2.0.0","dependencies":[)"
            R"({"name":"C","range":["1.0.0","3.0.0"]}],"hopsIn":[{"from":"1.0.0",)"
            R"("expensive":true}],"hopsOut":[],"variants":[{"C":"1.0.0"},{"C":"2.0.0"}]}]}]})");
}

TEST_F(EvopathBrowse, ShowsARangeOfTheLargestPatchAsTheOneVersionThatItIs) {
  const std::string largest = "1.0.18446744073709551615";
  write("largest.json", R"({"metamodels": [{"name": "E", "dependencies": [], "version": ")" +
                            largest + R"("}, {"name": "F", "version": "1.0.0", "dependencies": [)" +
                            R"({"name": "E", "range": ")" + largest + R"("}]}], "hops": []})");
  expect("show largest.json F", "F\n  1.0.0\n    needs    E " + largest + "\n");
  const auto json = run("show largest.json F --json").second;
  EXPECT_NE(json.find("\"range\": \"" + largest + "\""), std::string::npos) << json;
}

TEST_F(EvopathBrowse, ShowsHopsByTheEquivalentOfATextVersionAtThatVersion) {
  make("named", contentOf(TestRepository("A1 Aspring~2 A1>2!")), false);
  expect("show named.json A=spring",
         "A\n  spring = 2.0.0\n    from     1.0.0  expensive\n    linked   alone\n");
  const auto graph = run("graph named.json --format mermaid").second;
  EXPECT_NE(graph.find("m0v0 ==>|expensive| m0v1"), std::string::npos) << graph;
}

TEST_F(EvopathBrowse, ShowsWhoNeedsAMetamodel) {
  expect("show small.json --needed-by C",
         "C\n  A 2.0.0 needs [1.0.0, 3.0.0), 2 candidates\n  A 1.0.0 needs 1.0.0, only 1.0.0\n");
  expect("show small.json --needed-by C=2.0 Z=spring D",
         "C 2.0.0\n  A 2.0.0 needs [1.0.0, 3.0.0), 2 candidates\n"
         "Z spring\n  nothing needs it\nD\n  nothing needs it\n");
  expect("show small.json --needed-by Z", "Z\n  D 3.0.0 needs none, which no version satisfies\n");
  expect("show small.json --needed-by C=3.0",
         "evopath: there is no version 3.0.0 of metamodel \"C\"; the nearest known: 1.0.0 and "
         "2.0.0.\n",
         2);
  auto json = run("show small.json --needed-by C=1.0 --json").second;
  std::erase_if(json, [](char character) { return character == ' ' || character == '\n'; });
  EXPECT_EQ(json,
            R"({"metamodels":[{"name":"C","version":"1.0.0","neededBy":[{"name":"A",)"
            R"("version":"2.0.0","needs":{"name":"C","range":["1.0.0","3.0.0"]},"candidates":2},)"
            R"({"name":"A","version":"1.0.0","needs":{"name":"C","range":"1.0.0"},)"
            R"("candidates":1,"only":"1.0.0"}]}]})");
}

TEST_F(EvopathBrowse, SaysWhatItCannotShow) {
  const std::string unknown = "evopath: there is no metamodel \"B\"; did you mean A, C or D?\n";
  const std::tuple<std::string, int, std::string> cases[] = {
      {"show small.json B", 2, unknown},
      {"show small.json --at B=1.0", 2, unknown},
      {"steps small.json --at B=1.0", 2, unknown},
      {"show small.json A=3.0", 2,
       "evopath: there is no version 3.0.0 of metamodel \"A\"; the nearest known: 1.0.0 and "
       "2.0.0.\n"},
      {"show small.json --at A=1.0,C=2.0", 1, "No baseline: the versions cannot stand together.\n"},
      {"steps small.json --at A=1.0,C=2.0", 1,
       "No baseline: the versions cannot stand together.\n"},
      {"graph small.json A B", 2, unknown},
      {"graph small.json --limit 3", 2,
       "evopath: the graph has more than 3 versions, ranges, hops and dependencies; name fewer "
       "metamodels or give a higher --limit\n"},
      {"path small.json --question --output missing/a.svg --format svg", 2,
       "evopath: missing/a.svg: cannot be written: No such file or directory\n"},
  };
  for (const auto& [arguments, status, output] : cases) expect(arguments, output, status);
  const std::string noPath = "path small.json --from A=2.0 --to A=1.0 --format svg --output a.svg";
  EXPECT_TRUE(run(noPath + " 2>&1").second.starts_with("No path: no hops lead to A 1.0.0.\n"));
  EXPECT_EQ(run(noPath + " 2>/dev/null"), std::pair(1, std::string()));
  EXPECT_FALSE(std::filesystem::exists(path("a.svg")));
  EXPECT_EQ(runShell("PATH= '" EVOPATH_PROGRAM "' graph small.json --format svg 2>&1"),
            std::pair(2, std::string("evopath: Graphviz is not installed: the program dot, which "
                                     "lays out the graph, was not found\n")));
}

TEST_F(EvopathBrowse, DrawsHopsAndDependencies) {
  const auto [status, alone] = run("graph small.json A --format mermaid");
  EXPECT_EQ(alone,
            "flowchart LR\n  subgraph m0[\"A\"]\n    m0v0[\"2.0.0\"]\n    m0v1[\"1.0.0\"]\n  end\n"
            "  m0v1 ==>|expensive| m0v0\n");
  const auto needed = run("graph small.json A --with-dependencies --format mermaid").second;
  for (const char* line : {"m1v2([\"[1.0.0, 3.0.0): 2 versions\"])\n", "  m1v0 --> m1v1\n",
                           "  m0v0 -.-> m1v2\n", "  m0v1 -.-> m1v0\n"}) {
    EXPECT_NE(needed.find(line), std::string::npos) << line << needed;
  }
  EXPECT_EQ(run("graph small.json --format svg | xmllint --noout - 2>&1"),
            std::pair(0, std::string()));
}

TEST_F(EvopathBrowse, WritesWholeFilesOrNone) {
  const std::string text = run("path small.json --question").second;
  write("old", "precious");
  expect("path small.json --question --output old", "");
  EXPECT_EQ(read("old"), text);
  runShell("ln -s old link");
  expect("path small.json --question --json --output link", "");
  EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
  EXPECT_EQ(read("old"), run("path small.json --question --format json").second);
  EXPECT_EQ(run("path small.json --question --output /dev/full 2>&1").second,
            "evopath: /dev/full: cannot be written: No space left on device\n");
  EXPECT_EQ(run("path small.json --question 2>&1 >/dev/full").second,
            "evopath: standard output: cannot be written: No space left on device\n");
  EXPECT_EQ(runShell("ls").second, "link\nold\nsmall.json\n");
}

TEST_F(EvopathBrowse, ColoursOnATerminalOnly) {
  const auto onTerminal = [&](const std::string& environment) {
    return runShell("TERM=xterm " + environment +
                    " script -qec \"'" EVOPATH_PROGRAM
                    "' path small.json --question\" /dev/null </dev/null")
        .second;
  };
  EXPECT_NE(onTerminal("NO_COLOR=").find("\x1b[1;33mexpensive\x1b[0m"), std::string::npos);
  for (const char* environment : {"NO_COLOR=1", "TERM=dumb"}) {
    EXPECT_EQ(onTerminal(environment).find('\x1b'), std::string::npos) << environment;
  }
  EXPECT_EQ(run("path small.json --question").second.find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace test
