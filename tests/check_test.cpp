#include "catalogue/check/check.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/check/json_draft.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/utf16.hpp"
#include "support/catalogue_json.hpp"
#include "support/free_names.hpp"
#include "support/random_run.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

/// The findings about a catalogue as TestRepository::add takes it, which may end with the two sides
/// of a question, after a "?" and another.
std::vector<Finding> findingsOf(const std::string& content, const CheckLimits& limits = {}) {
  const std::size_t from = content.find('?');
  TestRepository repository(content.substr(0, from));
  nlohmann::ordered_json document = toJson(repository);
  if (from != std::string::npos) {
    const std::size_t to = content.find('?', from + 1);
    document["question"] = {{"from", selectionJson(content.substr(from + 1, to - from - 1))},
                            {"to", selectionJson(content.substr(to + 1))}};
  }
  return findingsIn(document.dump(), limits);
}

/// "code place" of each, with commas between them.
std::string brief(const std::vector<Finding>& findings) {
  std::string result;
  for (const Finding& finding : findings) {
    result += (result.empty() ? "" : ", ") + identifierOf(finding.code) + " " + finding.place.text;
  }
  return result;
}

const std::string unread = "/metamodels/0/dependencies";

TEST(JsonDraft, FindsAllThatIsOfAnotherFormAndGoesOn) {
  const std::pair<std::string, std::string> cases[] = {
      {"{\"metamodels\":\n  [}", "not-json "},
      {"[1, {}]", "wrong-type "},
      {"{}", "missing-field , missing-field "},
      {R"({"hops": {}, "metamodels": [1, [], null], "hop": [], "question": "?"})",
       "wrong-type /hops, wrong-type /metamodels/0, wrong-type /metamodels/1, "
       "wrong-type /metamodels/2, unknown-field /hop, wrong-type /question"},
      {R"({"metamodels": [], "metamodels": [7], "hops": [{}]})",
       "duplicate-field /metamodels, missing-field /hops/0, missing-field /hops/0, "
       "missing-field /hops/0, missing-field /hops/0"},
      {R"({"metamodels": [{"name": "", "name": "A", "version": 1, "semver": "x", "a/~b": 0,
           "dependencies": [{"name": "B\u0000", "range": ["1.0"]}, {"range": ["1.0", 2]}, 3]}],
          "hops": []})",
       "bad-name /metamodels/0/name, duplicate-field /metamodels/0/name, "
       "wrong-type /metamodels/0/version, bad-equivalent /metamodels/0/semver, "
       "unknown-field /metamodels/0/a~1~0b, bad-name " +
           unread + "/0/name, bad-range " + unread + "/0/range, missing-field " + unread +
           "/1, wrong-type " + unread + "/1/range/1, wrong-type " + unread + "/2"},
      {R"({"metamodels": [{"name": "A", "version": "1.0", "semver": "1.0", "dependencies": [
            {"name": "A", "range": ["3.0", "2.0"]},
            {"name": "A", "range": [[[[["deep", {"deeper": {}}]]]], "1.0"]}]}],
          "hops": [{"name": "A", "from": "1.0", "to": "any of 1.0.0", "expensive": 1}]})",
       "bad-equivalent /metamodels/0/semver, bad-range " + unread + "/0/range, wrong-type " +
           unread + "/1/range/0, bad-version /hops/0/to, wrong-type /hops/0/expensive"},
      {R"({"metamodels": [], "hops": [], "question": {"from": {"": "1.0", "A": 7}, "by": 1}})",
       "missing-field /question, bad-name /question/from/, wrong-type /question/from/A, "
       "unknown-field /question/by"},
  };
  for (const auto& [json, expected] : cases) EXPECT_EQ(brief(findingsIn(json)), expected) << json;
  EXPECT_EQ(findingsIn("{\"metamodels\":\n  [}")[0].message.substr(0, 43),
            "not JSON: parse error at line 2, column 4: ");
}

TEST(Check, FindsWhatIsWrongWithTheWhole) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"A1 A2 B1:A[1,3) A1>2", ""},
      {"A1 A1.0.0 Ax Ax",
       "no-hops /metamodels/0, duplicate-version /metamodels/1, "
       "missing-equivalent /metamodels/2, duplicate-version /metamodels/3"},
      {"Ax~1 Ay~1 Az~2 Ax>y Ax>z Ay>z", "duplicate-equivalent /metamodels/1/semver"},
      {"Ax~1 A2 A1 A1>x A1>1 A1>2 Ax>2",
       "ambiguous-equivalent /metamodels/0/semver, unreached-versions /metamodels/2, "
       "self-hop /hops/1/to"},
      {"Ax~1 Ay~2 A1>y Ax>y", "unoffered-hop /hops/0/from"},
      {"A1:B1 B1>2 C1 C1>2 C3>1", "unknown-dependency " + unread +
                                      "/0/name, unknown-hop-metamodel /hops/0/name, "
                                      "unknown-hop-version /hops/1/to, "
                                      "unknown-hop-version /hops/2/from"},
      {"A1..2 B1:A[1,1)", "empty-range /metamodels/2/dependencies/0/range"},
      {"A1:B[2,9)+B1+Bx B1", "unsatisfied-dependency " + unread + "/0/range, repeated-dependency " +
                                 unread + "/1, repeated-dependency " + unread +
                                 "/2, unsatisfied-dependency " + unread + "/2/range"},
      {"A1..3 B1:A[1,3)+A3", "contradictory-dependency /metamodels/3/dependencies/1"},
      {"A1..2 A1>2! A2>1", "duplicate-hop /hops/1"},
      // Names depend on one another, versions do not; then two cycles and one in passing.
      {"A1:B1 B1 B2:A2 A2 A1>2 B1>2", ""},
      {"A1:A[1,9) B1:C1 C1:B[1,2)+D1 D1:C1",
       "dependency-cycle " + unread + ", dependency-cycle /metamodels/1/dependencies"},
      // What leads back does not link; what is optional need not be there.
      {"A1:B1+C1 B1:A1+C2 C1..2 A2:%D1 A1>2",
       "unmet-version /metamodels/0, dependency-cycle " + unread + ", unmet-version /metamodels/1"},
      {"A1:B1 B1:A1+%C2 C1..2 D1:A1+C1 E1:A1+C2",
       "dependency-cycle " + unread + ", unmet-version /metamodels/4"},
      {"A1..3 B1..2 B3:A3 B2>3 C1:%A1+%A2+B[1,9)", ""},  // with an older B there is no A
      {"A1:C1 A2:B1 B1:C2 C1 C2 D1:A[1,9)+B1 A1>2 C1>2", ""},
      {"A1:C1 B1:C2 C1..2 D1:A1+B1 D2:A[1,9)+B[1,9) D3 E1:D[1,3) F1:E1 D1>2 D2>3",
       "unlinkable-version /metamodels/4, blocked-version /metamodels/4, "
       "unlinkable-version /metamodels/5"},
      {"A1:B1 B1:A2 A2 C1:A[1,9)+B1 A1>2", "unlinkable-version /metamodels/0"},
      // Versions by their hops: with none, apart, begun anew, and ended twice.
      {"A1 A2 A3", "no-hops /metamodels/0"},
      {"A1..2 A3 A4 A5 A4>5",
       "several-heads /metamodels/1, stranded-versions /metamodels/2, "
       "unreached-versions /metamodels/3"},
      {"A1..3 A3>1 A2>1 A4 A4>3", "unreached-versions /metamodels/3"},
      {"Ax Ay A1 Ax>1 Ay>1 A1>y",
       "missing-equivalent /metamodels/0, unreached-versions /metamodels/1"},
      {"A1?A1 B1?", "unknown-question-metamodel /question/from/B, empty-question /question/to"},
      {"A1..2 B1:A1?A2 B1?A3 B1",
       "inconsistent-question /question/from, "
       "unknown-question-version /question/to/A"},
  };
  for (const auto& [content, expected] : cases) {
    EXPECT_EQ(brief(findingsOf(content)), expected) << content;
  }
}

TEST(Check, NamesWhatTakesPart) {
  const auto expectMessage = [](const std::string& content, const std::string& message,
                                const std::vector<std::string>& related) {
    const Finding finding = findingsOf(content).at(0);
    EXPECT_EQ(finding.message, message);
    std::vector<std::string> places;
    for (const Place& place : finding.related) places.push_back(place.text);
    EXPECT_EQ(places, related) << content;
  };
  expectMessage("X1:A1 A1:B[1,9) B1 B2:Cspring+D1 Cspring:A[0.1,1.0.1) D1:A1",
                "the dependencies form a cycle: A@1.0.0 -> B@2.0.0 -> C@spring -> A@1.0.0, and "
                "others with 1 more version",
                {"/metamodels/3", "/metamodels/4"});
  expectMessage("C1..2 A1:C1 B1:A1 D1:B1+C[2,5)",
                "D@1.0.0 cannot be linked: D@1.0.0 needs \"C\" [2.0.0, 5.0.0), but D@1.0.0 -> "
                "B@1.0.0 -> A@1.0.0 needs \"C\" 1.0.0",
                {});
  expectMessage("C1..2 A1:C1 A2:C1 A1>2 D1:A[1,3)+C2",
                "D@1.0.0 cannot be linked: whichever versions of \"A\" are chosen, for instance "
                "D@1.0.0 needs \"C\" 2.0.0, but D@1.0.0 -> A@2.0.0 needs \"C\" 1.0.0",
                {});
  expectMessage("A1:B1 B1:A2 A2 A1>2",
                "A@1.0.0 can stand in no baseline: A@1.0.0 is asked for, but A@1.0.0 -> B@1.0.0 "
                "needs \"A\" 2.0.0",
                {});
  expectMessage("A1:B2 B1 C1:A[1,9) D1:C1",
                "A@1.0.0 cannot be linked, and so nothing can that depends on a range which admits "
                "it: C@1.0.0 and D@1.0.0",
                {"/metamodels/2", "/metamodels/3"});
}

/// A few versions of each of a few names that depend on one another, mostly on earlier names.
std::string randomContent(Random& random) {
  const auto upTo = [&](std::size_t most) { return random.upTo(most); };
  const auto digit = [&](std::size_t most) { return std::to_string(upTo(most)); };
  const std::size_t names = 2 + upTo(3);
  std::string content;
  for (char name = 'A'; name < static_cast<char>('A' + names); ++name) {
    for (unsigned n = 1; n <= 3; ++n) {
      const bool isText = upTo(8) == 1;
      content += std::string{' ', name} + (isText ? "t" : "") + std::to_string(n) +
                 (isText && upTo(2) == 1 ? "~" + digit(3) : "");
      char separator = ':';
      for (std::size_t i = upTo(5); i < 5; ++i) {
        const std::size_t lower = upTo(3);
        const auto earlier = static_cast<std::size_t>(name - 'A');
        const std::size_t needed = random() % (upTo(12) == 1 ? names : earlier + 1);
        if (needed == earlier && upTo(9) > 1) continue;
        content += separator + std::string(upTo(8) == 1 ? "%" : "") +
                   static_cast<char>('A' + needed) + "[" + std::to_string(lower) + "," +
                   std::to_string(lower + upTo(3)) + ")";
        separator = '+';
      }
    }
  }
  return content;
}

/// Makes some ranges unions with another one.
void addUnions(TestRepository& repository, Random& random) {
  for (Metamodel& metamodel : repository.metamodels) {
    for (Dependency& dependency : metamodel.dependencies) {
      if (!random.chance(25)) continue;
      const std::uint64_t lower = random.upTo(4);
      VersionRange other = between(lower, lower + random.upTo(2));
      if (random.chance(20)) other = toUtf16("t" + std::to_string(random.upTo(3)));
      dependency.range = unionOf({dependency.range, other});
    }
  }
}

/// The places of versions of which the findings say that they can be in no baseline.
std::set<std::string> unusable(const std::vector<Finding>& findings,
                               const nlohmann::ordered_json& document) {
  std::set<std::string> result;
  for (const Finding& finding : findings) {
    const std::string place = finding.place.text;
    if (finding.code == FindingCode::UnlinkableVersion) result.insert(place);
    if (finding.code == FindingCode::UnmetVersion) result.insert(place);
    if (finding.code == FindingCode::UnsatisfiedDependency) {
      // Of several dependencies on one name, only the first must be satisfied.
      const std::string dependency = place.substr(0, place.rfind('/'));
      if (document.at(nlohmann::ordered_json::json_pointer(dependency)).contains("optional")) {
        continue;
      }
      const std::string repeated = "repeated-dependency " + dependency + ",";
      if (brief(findings).find(repeated) == std::string::npos) {
        result.insert(place.substr(0, place.find('/', 12)));
      }
    }
    if (finding.code == FindingCode::BlockedVersion) {
      for (const Place& blocked : finding.related) result.insert(blocked.text);
    }
  }
  return result;
}

/// Whether a version that is selected links another one of its own name: the path finder lets the
/// other one stand back if names before have been taken.
bool anySelectedLinksOwnName(VersionRepository& repository, const Selection& selected) {
  return std::any_of(selected.begin(), selected.end(), [&](const auto& entry) {
    const auto& linked = repository.getLinkedMetamodels(entry.first, entry.second);
    return std::any_of(linked.begin(), linked.end(), [&](const auto& variant) {
      return variant->linkedMetamodels.contains(entry.first);
    });
  });
}

TEST(Check, SaysOfVersionsAndSelectionsWhatLinkingThemSays) {
  RandomRun run(3000);
  run.ask(randomContent, [&](const std::string& content, Random& random) {
    TestRepository plain(content);
    addUnions(plain, random);
    nlohmann::ordered_json document = toJson(plain);
    std::string selected;
    for (const char* item : {"A1", "B2", "C3"}) {
      if (random() % 3 > 0) selected += std::string(selected.empty() ? "" : " ") + item;
    }
    document["question"] = {{"from", selectionJson(selected)}, {"to", selectionJson("A1")}};
    const std::vector<Finding> findings = findingsIn(document.dump());
    std::istringstream in(document.dump());
    if (hasError(findings)) {
      EXPECT_THROW(readJsonCatalogue(in), CatalogueError) << document;
      return;
    }
    run.count("sound");
    CatalogueRepository repository(readJsonCatalogue(in));
    const std::string all = brief(findings);
    if (repository.hasRequirements() && anyLinksOwnName(repository)) return;
    const bool isFirstAmbiguous = all.find("dependency-cycle") != std::string::npos &&
                                  all.find("repeated-dependency") != std::string::npos;
    if (isFirstAmbiguous) return;  // the first of several that does not link is passed over
    const std::vector<VersionBaseline> none;
    FreeNames free(repository, none, {}, VersionRepository::Unknown);
    std::set<std::string> expected;
    for (std::size_t n = 0; n < plain.metamodels.size(); ++n) {
      const auto& [name, version, dependencies] = plain.metamodels[n];
      const bool isShadowed = repository.getMetamodel(name, version)->version != version;
      const std::string place = "/metamodels/" + std::to_string(n);
      if (isShadowed ? unusable(findings, document).contains(place)
                     : !free.canBeHeld({{name, version}})) {
        expected.insert(place);
      }
    }
    ASSERT_EQ(unusable(findings, document), expected) << document << all;
    run.count("clashing", all.find("unlinkable-version") != std::string::npos);
    run.count("unmet", all.find("unmet-version") != std::string::npos);
    if (repository.hasRequirements()) return;  // of which the question's check says nothing
    const bool isComplete = all.find("unknown-question") == std::string::npos && !selected.empty();
    if (!isComplete) return;
    const bool isInconsistent =
        all.find("inconsistent-question /question/from") != std::string::npos;
    const Selection from = selection(selected);
    bool isConsistent = free.canBeHeld({from.begin(), from.end()});
    for (const auto& entry : from) isConsistent = isConsistent && free.canBeHeld({entry});
    if (isConsistent && anySelectedLinksOwnName(repository, from)) return;
    ASSERT_EQ(isInconsistent, !isConsistent) << document << all;
  });
  run.expectPercentages({{"sound", 9}, {"clashing", 3}, {"unmet", 1}});
}

TEST(Check, BoundsTheWorkOfLinkingAndSaysSo) {
  // Thirteen pigeons for twelve holes: every two agree, and all can be tried for ages.
  std::string content;
  std::string pigeons;
  for (char hole = 'A'; hole < 'M'; ++hole) content += std::string(" ") + hole + "1..13";
  for (char pigeon = 'N'; pigeon <= 'Z'; ++pigeon) {
    for (int hole = 0; hole < 12; ++hole) {
      content += std::string{' ', pigeon} + std::to_string(hole + 1) + ":" +
                 static_cast<char>('A' + hole) + std::to_string(pigeon - 'N' + 1);
    }
    pigeons += std::string{pigeons.empty() ? ':' : '+', pigeon} + "[1,13)";
  }
  const auto undecided = [](const std::vector<Finding>& findings) {
    return brief(findings).find("undecided-links /metamodels/");
  };
  const std::string all = brief(findingsOf(content + " a1" + pigeons));
  EXPECT_NE(all.find("undecided-links /metamodels/312"), std::string::npos);
  EXPECT_EQ(undecided(findingsOf(content)), std::string::npos);
  EXPECT_NE(undecided(findingsOf("A1..2 B1:A1 C1:A2 D1:B1+C1", {2})), std::string::npos);
}

TEST(Check, LongChainsAndWideRangesAreNoBurden) {
  std::string content = "A20000";
  for (int n = 1; n < 20000; ++n) {
    content += " A" + std::to_string(n) + ":A[" + std::to_string(n + 1) + ",20001)";
  }
  EXPECT_FALSE(hasError(findingsOf(content)));
  const std::vector<Finding> findings = findingsOf(content + " A20001:A[1,2) A20002:A20001");
  EXPECT_EQ(brief(findings).substr(0, 10), "no-hops /m");
}

TEST(Check, FindsNothingWorseThanNotesInTheRealCatalogue) {
  const std::vector<Finding> findings = check(readJsonDraft(std::filesystem::path(CATALOGUE_FILE)));
  EXPECT_FALSE(findings.empty());
  for (const Finding& finding : findings) {
    EXPECT_EQ(severityOf(finding.code), Severity::Note) << finding.message;
  }
}

}  // namespace
}  // namespace test
