// Explanations through the real program, over both forms of a catalogue.
#include <algorithm>
#include <map>

#include "platform/text.hpp"
#include "support/evopath_program.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

class EvopathExplain : public EvopathProgram {
 protected:
  /// "A=1.0.0,B=spring," for "A1 Bspring".
  static std::string argument(const std::string& selected) {
    std::string result;
    const auto versions = selection(selected);
    for (const auto& [name, version] : std::map(versions.begin(), versions.end())) {
      result += fl::i18n::ustring_to_utf8(name) + "=" + printed(version) + ",";
    }
    return result;
  }
};

TEST_F(EvopathExplain, SaysWhyNotAndWhatIsNearest) {
  const std::string onlyVersions = "S1..2 D1:S1 D2:S2 D1>2 ";
  const std::string stay = "That is the source itself: nothing can be done that comes nearer.\n";
  const std::tuple<std::string, std::string, std::string, int, std::string> cases[] = {
      {"A1 A1.2 A2 A3 B1", "C1", "A1.5", 2,
       "evopath: there is no metamodel 'C' to start from; did you mean A or B?\n"
       "there is no version 1.5.0 of metamodel 'A' to reach; the nearest known: 1.0.0, 1.2.0, "
       "2.0.0 and 3.0.0.\n"},
      {"A0.9 A0.10 A9.1 A10", "A9", "A0.9", 2,
       "the nearest known: 0.9.0, 0.10.0, 9.1.0 and 10.0.0."},
      {"A1 Asummer Aspring Ax Ay", "Asprang", "Aspring", 2,
       "no version sprang of metamodel 'A' to start from; the nearest known: spring, summer and"},
      {onlyVersions + "B1:S[1,2) P1:B1", "D2 P1", "S2", 1,
       "No path: the versions to start from cannot stand together.\n"
       "  D 2.0.0 needs S 2.0.0\n"
       "  P 1.0.0 -> B 1.0.0 needs S [1.0.0, 2.0.0)\n"
       "With D at 1.0.0 the selection would be consistent.\n"},
      {onlyVersions, "D1", "D2 S1", 1,
       "No path: the versions to reach cannot stand together.\n"
       "  D 2.0.0 needs S 2.0.0\n"
       "  S is selected at 1.0.0\n"
       "With D at 1.0.0 the selection would be consistent.\n"
       "With S at 2.0.0 the selection would be consistent.\n"
       "Nearest baseline that can be reached, with 1 of 2 metamodels at the version asked for:\n"},
      {"X1:S[1,3) Y1:S[2,4) Z1:U[1,3) U1:S1 U2:S3 S1..3", "X1 Y1 Z1", "X1", 1,
       "  X 1.0.0 needs S [1.0.0, 3.0.0)\n"
       "  Y 1.0.0 needs S [2.0.0, 4.0.0)\n"
       "  Z 1.0.0 -> U 1.0.0 needs S 1.0.0\n"
       "  Z 1.0.0 -> U 2.0.0 needs S 3.0.0\n"},
      {"A1 A2:C1 C1:B[5,6) B1 A1>2", "A1", "A2", 1,
       "No path: a version to reach cannot be linked.\n"
       "A 2.0.0 cannot be linked: A 2.0.0 -> C 1.0.0 needs B [5.0.0, 6.0.0), which no version "
       "satisfies; the nearest known: 1.0.0.\n"},
      {"A1 A2:B1+C1 B1:S1 C1:S2 S1..2 A1>2", "A1", "A2", 1,
       "A 2.0.0 cannot be linked: A 2.0.0 has dependencies that cannot stand together.\n"
       "  A 2.0.0 -> B 1.0.0 needs S 1.0.0\n"
       "  A 2.0.0 -> C 1.0.0 needs S 2.0.0\n"},
      {"A1 A2 A3:B[5,6) B1 A1>2 A1>3", "A1", "A2", 2,
       "No path: versions that might lie on the way cannot be linked.\n"
       "This path keeps clear of them:\nStep 1, weight 2\n  A  1.0.0 -> 2.0.0\n"
       "1 step, weight 2\nA 3.0.0 cannot be linked: A 3.0.0 needs B"},
      {"A1..3 A5..6", "A1", "A6", 1,
       "No path: no hops lead to A 6.0.0.\n"
       "Hops count if they go forward, for that is where the question goes.\n"
       "A gets from 1.0.0 as far as 3.0.0; to 6.0.0 hops lead only from 5.0.0 on.\n"
       "  Missing is a hop 3.0.0 -> 5.0.0, or another one in the right direction from 1.0.0, 2.0.0 "
       "or 3.0.0 to 5.0.0 or 6.0.0.\n"
       "Nearest baseline that can be reached, with 0 of 1 metamodel at the version asked for:\n"
       "  A  1.0.0, no hops lead on to 6.0.0\n" +
           stay},
      {"A1 A2 B1..2", "A1 B1", "A2 B2", 1,
       "A cannot leave 1.0.0, and no hop leads to 2.0.0.\n  Missing is a hop 1.0.0 -> 2.0.0.\n"
       "Nearest baseline that can be reached, with 1 of 2 metamodels at the version asked for:\n"
       "  B  2.0.0\n  A  1.0.0, no hops lead on to 2.0.0\nThe way there:\n"
       "Step 1, weight 2\n  B  1.0.0 -> 2.0.0\n1 step, weight 2\n"},
      {"A1 B1 C1:B1", "A1", "A1 B1", 1,
       "The source does not hold B, and nothing within reach brings it in.\n"
       "  Let the source hold B at 1.0.0, or a metamodel that gets to C 1.0.0, which brings it "
       "in.\n"},
      {"A1 A2:B1 B1 B3 A1>2", "A1", "B3", 1,
       "B can be brought in, but cannot leave 1.0.0, and no hop leads to 3.0.0.\n"},
      {"A1 A2 A3 A1>3 A3>2", "A1", "A2", 1,
       "No path: every way there has hops that do not go forward.\n"
       "If all hops counted, there would be a path. Against the direction go:\n"
       "  A 3.0.0 -> 2.0.0\nThe path in both directions:\n"},
      {"A1 Arc A2 A1>rc Arc>2 B1 B2", "A1 B1", "A2 B2", 1,
       "  Were it not for the direction, this chain would do: 1.0.0 -> rc -> 2.0.0\n"
       "B cannot leave 1.0.0, and no hop leads to 2.0.0.\n  Missing is a hop 1.0.0 -> 2.0.0.\n"
       "A rc without a semantic equivalent counts as older than every semantic version."},
      {onlyVersions + "P1:S1 X1..2", "D1 P1 X1", "D2 X2", 1,
       "No path: D and P block one another.\n"
       "With any one of them left out, the others get there.\n"
       "They get stuck with D 1.0.0 and P 1.0.0.\n"
       "There D cannot go 1.0.0 -> 2.0.0:\n  D 2.0.0 needs S 2.0.0\n  P 1.0.0 needs S 1.0.0\n"
       "Nearest baseline that can be reached, with 1 of 2 metamodels at the version asked for:\n"
       "  X  2.0.0\n  D  1.0.0, 1 hop short of 2.0.0\nThe way there:\n"},
      {"S1 S2 D1:S1 D2:S2 D1>2", "D1", "D2", 1,
       "No path: D and S block one another.\nWith any one of them left out, the others get there.\n"
       "They get stuck with D 1.0.0 and S 1.0.0.\nThere D cannot go 1.0.0 -> 2.0.0:\n  D 2.0.0 "
       "needs S 2.0.0\n  S can then only be 1.0.0\n"},
  };
  int made = 0;
  for (const auto& [content, from, to, status, expected] : cases) {
    const std::string name = "c" + std::to_string(made++);
    make(name, contentOf(TestRepository(content)));
    std::string question = " --from '" + argument(from);
    question += "' --to '" + argument(to) + "'";
    const std::string explain = "explain " + name + ".json";
    const auto [found, output] = run(explain + question + " 2>&1");
    EXPECT_EQ(found, status) << content;
    std::string text = output;
    std::replace(text.begin(), text.end(), '"', '\'');
    EXPECT_NE(text.find(expected), std::string::npos) << content << "\n"
                                                      << expected << "\n"
                                                      << text;
    for (const std::string& other : {"explain " + name + ".store", "path " + name + ".json"}) {
      EXPECT_EQ(run(other + question + " 2>&1"), std::pair(found, output)) << other;
    }
  }
}

TEST_F(EvopathExplain, NamesNothingThatWouldDisturbATerminal) {
  TestRepository repository("A1..2 B1 C1:B1");
  for (Metamodel& metamodel : repository.metamodels) metamodel.name += u"\u00e9\x1b[31m";
  for (Hop& hop : repository.hops) hop.name += u"\u00e9\x1b[31m";
  repository.metamodels[3].dependencies[0].name += u"\u00e9\x1b[31m";
  make("c", contentOf(repository));
  write("twice.json",
        R"({"metamodels": [{"name": "A\u001b", "version": "1.0", "dependencies": []},)"
        R"({"name": "A\u001b", "version": "1.0", "dependencies": []}], "hops": []})");
  const std::string suffix = "\u00e9\x1b[31m";
  const std::string from = " --from 'A" + suffix + "=1.0,B" + suffix + "=1.0'";
  const std::pair<std::string, std::string> cases[] = {
      {"explain c.json" + from + " --to 'A" + suffix + "=1.0,C" + suffix + "=1.0'",
       "\n  A\u00e9\\u{1b}[31m  1.0.0\n  C\u00e9\\u{1b}[31m  not brought in, 1.0.0 asked for\n"},
      {"path c.json" + from + " --to 'A" + suffix + "=9.0'",
       "evopath: there is no version 9.0.0 of metamodel \"A\u00e9\\u{1b}[31m\" to reach"},
      {"path c.json --trace" + from + " --to 'A" + suffix + "=2.0'",
       "Attempting Lockstep {Hop {A\u00e9\\u{1b}[31m@1.0.0->2.0.0}}\n"},
      {"remove c.store 'B" + suffix + "'",
       "  C\u00e9\\u{1b}[31m@1.0.0 depends on B\u00e9\\u{1b}[31m 1.0.0\n"},
      {"check twice.json", "/metamodels/1  A\\u{1b}@1.0.0 stands already at /metamodels/0\n"},
      {"path twice.json --question", "/metamodels/1: A\\u{1b}@1.0.0 stands already"},
  };
  for (const auto& [arguments, expected] : cases) {
    const std::string output = run(arguments + " 2>&1").second;
    EXPECT_NE(output.find(expected), std::string::npos) << arguments << "\n" << output;
    EXPECT_EQ(output.find('\x1b'), std::string::npos) << arguments << "\n" << output;
  }
}

TEST_F(EvopathExplain, SaysWhenTheBudgetEnded) {
  // Over the hops of C in a circle nothing is asked at once.
  make("c", contentOf(TestRepository("A1..3 B1..2 Crc Cdev Crc>dev Cdev>rc S1..2 P1:A1+B1+Crc")),
       false);
  const std::string question = "explain c.json --from A=1.0,B=1.0,C=rc,P=1.0 --to A=3.0,B=2.0";
  const std::string whole = run(question + " 2>&1").second;
  EXPECT_NE(whole.find("No path: B and P block"), std::string::npos) << whole;
  EXPECT_NE(whole.find("not proven that no fewer block"), std::string::npos) << whole;
  EXPECT_EQ(whole.find("budget"), std::string::npos) << whole;
  const std::string cut = run(question + " --budget 0 2>&1").second;
  for (const char* said : {"No path: A, B, C and P block", "whether all of these are needed",
                           "(the best found before the budget ended)"}) {
    EXPECT_NE(cut.find(said), std::string::npos) << cut;
  }
}

TEST_F(EvopathExplain, AnswersProgramsInJson) {
  make("c", contentOf(TestRepository("S1..2 D1:S1 D2:S[2,3) D1>2 P1:S1")), false);
  auto [status, output] = run("path c.json --json --from D=1.0,P=1.0 --to D=2.0 2>&1");
  std::erase_if(output, [](char character) { return character == ' ' || character == '\n'; });
  EXPECT_EQ(status, 1);
  const std::string d1 = R"({"name":"D","version":"1.0.0"})";
  const std::string p1 = R"({"name":"P","version":"1.0.0"})";
  EXPECT_EQ(
      output,
      R"({"form":1,"found":false,"question":{"from":{"D":"1.0.0","P":"1.0.0"},"to":{"D":"2.0.0"}},)"
      R"("reason":"DandPblockoneanother.","explanation":{"kind":"never-together",)"
      R"("names":["D","P"],"minimal":true,"smallest":true,"stuckAt":[)" +
          d1 + "," + p1 +
          R"(,{"name":"S","version":"1.0.0"}],"blocked":[{"hop":{"name":"D","from":"1.0.0",)"
          R"("to":"2.0.0"},"clash":{"parties":["D","P"],"contested":"S","requirements":[{"chain":)"
          R"([{"name":"D","version":"2.0.0"}],"name":"S","range":["2.0.0","3.0.0"]},{"chain":[)" +
          p1 +
          R"(],"name":"S","range":["1.0.0","1.0.1"]}]}}],"otherClashes":[],"unlinkable":[],"withoutOrder":[],)"
          R"("nearest":{"arrived":[],"unfinished":[{"target":{"name":"D","version":"2.0.0"},)"
          R"("held":"1.0.0","hopsLeft":1}],"proven":true,"steps":[]},"questions":7}})");
  EXPECT_EQ(run("explain c.json --json --from D=9.0 --to D=1.0 2>/dev/null").first, 2);
}

TEST_F(EvopathExplain, TakesSelectionsFromFiles) {
  CatalogueContent content = contentOf(TestRepository("A1..2 B1..2"));
  make("plain", content);
  content.question = Question{selection("A1 B1"), selection("A2")};
  make("asks", content);
  write("a.json", R"({"A": "1.0"})");
  write("twice.json", R"({"A": "1.0", "A": "1.0"})");
  write("number.json", "{\"A\": 1}");
  write("list.json", "[]");
  write("broken.json", "{\"A\": \n]");
  const std::string moveA = "Step 1, weight 2\n  A  1.0.0 -> 2.0.0\n1 step, weight 2\n";
  const std::string moveBoth =
      "Step 1, weight 3\n  A  1.0.0 -> 2.0.0\n  B  1.0.0 -> 2.0.0\n"
      "    together because that weighs less: A; B\n1 step, weight 3\n";
  const std::tuple<std::string, int, std::string> cases[] = {
      {"--from @a.json --to A=2.0", 0, moveA},
      {"--from @asks.json --to @asks.json", 0, moveA},
      {"--from @asks.store --to @asks.store,B=2.0", 0, moveBoth},
      {"--from @a.json,B=1.0 --to A=2.0 --to B=2.0", 0, moveBoth},
      {"--from @a.json,A=1.0 --to A=2.0", 2, "--from A=1.0: the name A stands twice\n"},
      {"--from @a.json --to @plain.json", 2, "plain.json: the catalogue has no question\n"},
      {"--from @a.json --to @plain.store", 2, "plain.store: the catalogue has no question\n"},
      {"--from @twice.json --to A=2.0", 2, "twice.json: the field \"A\" stands twice\n"},
      {"--from @number.json --to A=2.0", 2, "number.json: /A: must be a text, not a number\n"},
      {"--from @list.json --to A=2.0", 2, "list.json: must be an object, not an array\n"},
      {"--from @broken.json --to A=2.0", 2, "broken.json: not JSON: parse error at line 2"},
      {"--from @missing.json --to A=2.0", 2, "missing.json: cannot be opened: No such file"},
      {"--from @/ --to A=2.0", 2, "/: is a directory, not a file\n"},
  };
  for (const auto& [arguments, status, expected] : cases) {
    const auto [found, output] = run("path plain.json " + arguments + " 2>&1");
    EXPECT_EQ(found, status) << arguments;
    EXPECT_NE(output.find(expected), std::string::npos) << arguments << ": " << output;
  }
}

}  // namespace
}  // namespace test
