// Asks all search engines the same questions.
#include <gtest/gtest.h>

#include <cctype>
#include <set>

#include "pathfinder/learning/random_choices.hpp"
#include "pathfinder/planning/goal_directed_search.hpp"
#include "pathfinder/search/exhaustive_search.hpp"
#include "platform/exception.hpp"
#include "support/engine_question.hpp"
#include "support/learning_engine.hpp"
#include "support/legal_path.hpp"
#include "support/random_question.hpp"
#include "support/small_stack.hpp"
#include "support/test_question.hpp"
#include "support/trace_capture.hpp"

namespace test {
namespace {

using Verdict = SearchAnswer::Verdict;

void expectSame(const SearchAnswer& expected, const SearchAnswer& found) {
  ASSERT_EQ(found.verdict, expected.verdict);
  EXPECT_EQ(found.target, expected.target);
  EXPECT_EQ(describe(Path(found.steps)), describe(Path(expected.steps)));
  for (std::size_t i = 0; i < std::min(found.steps.size(), expected.steps.size()); ++i) {
    EXPECT_EQ(found.steps[i].from, expected.steps[i].from);
    EXPECT_EQ(found.steps[i].to, expected.steps[i].to) << "other variants of the same versions";
  }
}

/// The same question, with what the application says of the versions that it mentions.
SearchQuestion knowing(SearchQuestion question, std::vector<KnownMetamodel>& answers) {
  for (const auto* baselines : {&question.sources, &question.targets}) {
    for (const VersionBaseline& baseline : *baselines) {
      for (const auto& [name, linked] : baseline.metamodels) {
        if (auto answer = question.host.getMetamodel(name, linked->version)) {
          const auto& known = question.host.getLinkedMetamodels(*answer);
          answers.push_back({&name, &linked->version, *std::move(answer), &known});
        }
      }
    }
  }
  question.known = answers;
  return question;
}

/// Whether some name leaves a version and comes back to it.
bool comesBack(const std::vector<BaselineHop>& steps) {
  std::set<std::string> left;
  bool isBack = false;
  for (const BaselineHop& step : steps) {
    for (const auto& [name, hop] : step.hops) {
      left.insert(brief(name, hop.from));
      isBack |= left.contains(brief(name, hop.to));
    }
  }
  return isBack;
}

void compare(const std::string& text, Random& random, RandomRun& run) {
  TestQuestion question(text);
  if (!question.isPosed()) return;
  const SearchQuestion asked = engineQuestion(question);
  SearchAnswer expected;
  try {
    expected = searchExhaustively(asked);
  } catch (const foundation::core::except::IMsgIDException&) {
    return;  // it met a version that cannot be linked, which may lie off every path
  }
  const SearchAnswer found = searchGoalDirected(asked);
  expectSame(expected, found);
  std::vector<KnownMetamodel> answers;
  expectSame(expected, searchGoalDirected(knowing(asked, answers)));
  if (const auto learnt = answerByLearning(asked)) {
    expectSame(expected, learnt->answer);
    const RandomChoices choices(random());
    expectSame(expected, answerByLearning(asked).value().answer);
    run.count("learnt paths", expected.verdict == Verdict::Found);
    run.count("learnt absences", expected.verdict == Verdict::NoPath);
  } else {
    run.count("declined", expected.verdict == Verdict::NoPath || !expected.steps.empty());
  }
  run.count("rounds", comesBack(expected.steps));
  run.count("absences", expected.verdict == Verdict::NoPath);
  run.count("paths", expected.verdict == Verdict::Found);
  run.count("long paths", expected.steps.size() >= 3);
}

TEST(Engines, AgreeOnRandomQuestions) {
  RandomRun run(4000);
  run.ask(randomQuestion,
          [&](const std::string& text, Random& random) { compare(text, random, run); });
  run.expectPercentages(
      {{"learnt paths", 40}, {"long paths", 6}, {"learnt absences", 1}, {"rounds", 1}});
}

/// S could go on from S1 to what no one knows, beside which M and what Q links of it could be held.
TEST(Engines, HopsThatAreNotKnownMayLeadToWhatLinksOfSeveralNamesAllow) {
  TestQuestion question(
      "S1?hops S1 S2 S3 S2>1! S3>1 S3>2 M1:S1 M2:S2 M3 M2>1 M3>2 Q2:M[1,4) | S3 Q2 | M1 S1 |");
  const SearchQuestion asked = engineQuestion(question);
  EXPECT_THROW(searchExhaustively(asked), CallbackFailure);
  EXPECT_THROW(searchGoalDirected(asked), CallbackFailure);
}

TEST(Engines, AgreeOnQuestionsMadeToMislead) {
  const struct {
    const char* text;
    std::size_t steps;  // ~0: no path
  } cases[] = {
      {"A1..2 B1..4 C1..5 D1..3 | A1 B1 C1 D1 | A2 B4 C5 D3", 4},
      {"A1..3 B1:A1 B2:A2 B3:A3 B1>2 B2>3 C1:B1 C2:B2 C3:B3 C1>2 C2>3 | C1 | C3", 2},
      {"A1..5 B1..4 C1:A[1,2) C2:A[2,6) C1>2 | A1 B1 C1 | A5 B4 C2", 4},
      {"A1..4 B1:A[1,4) B2:A[2,5) B1>2 C1:A[1,4) C2:A[2,5) C1>2 | B1 C1 A1 | A4 B2 C2", 3},
      // Neither version of C can stand beside A's middle one.
      {"A1..3 B1..4 C1:A1 C2:A3 C1>2 | A1 B1 C1 | A3 B4 C2", ~std::size_t{0}},
      // Several targets, the nearest neither first nor last; one that is included already.
      {"A1..4 B1..4 | A1 B1 | A4 B1 , A2 B2 , A1 B4", 1},
      {"A1..4 B1..4 | A1 B1 | A4 B4 , B1", 0},
      // Several sources, each of which would be nearer with what the other one holds.
      {"A1..3 B1..4 | A1 B3 , A3 B1 | A3 B3", 2},
      {"A1 A2 A3 A1>2! A2>3! B1 B2 B1>2! | A1 B1 | A3 B2", 2},
      // The way that costs A least takes more steps than a dearer one.
      {"A1..5 A1>5! A1>3! B1..2 | A1 B1 | A5 B2", 4},
      {"A1..4 A1>4! B1:A1 B2:A4 B1>2 | A1 B1 | A4 B2", 1},
      // Round about, and through a version that only another metamodel's way forces.
      {"A1 A2 A3 A1>2 A2>1 A2>3 B1:A[1,3) B2:A2 B3:A1 B4:A[1,4) B1>2 B2>3 B3>4 | A1 B1 | A3 B4", 4},
      // Two hops of one kind, and two that differ in price only.
      {"A1 A2 A1>2! A1>2 A1>2 B1..2 | A1 B1 | A2 B2", 1},
      // The last of equal hops comes after the way over A3, the first one before it.
      {"A1 A2 A3 A4 A1>2 A1>3 A1>2 A2>4 A3>4 B1 | A1 B1 | A4 B1", 2},
      // 3.0.0 is met before 2.0.0, which leads back to it.
      {"A1 A2 A3 A4 A1>3! A1>2 A2>3 A3>4 B1..3 | A1 B1 | A4 B3", 3},
      // Only one of them can go the cheap way.
      {"A1 A2:B1+C1+D1 A3 A1>2 A2>3 A1>3! B1 B2:A1+C1+D1 B3 B1>2 B2>3 B1>3! C1 C2:A1+B1+D1 C3 C1>2 "
       "C2>3 C1>3! D1 D2:A1+B1+C1 D3 D1>2 D2>3 D1>3! | A1 B1 C1 D1 | A3 B3 C3 D3",
       2},
      // Few hops in many steps, and many in few, heavier ones; B has to be out of the way of the
      // latter.
      {"A1 A2 A3 A5 A9 A1>2 A2>3 A3>5 A1>9 A9>5 B1:A[1,6) B2:A9 B3:A[1,6) B1>2 B2>3 | A1 B1 | A5",
       2},
      // A3 is met by way of A2, which cannot be reached, before what does lead to it; and B has to
      // move before A does.
      {"A1 A2:C2 A3 A4:B2 A5 A6 A7 A1>2 A2>3 A3>5 A1>4 A4>6 A6>7 A7>3 B1 B2 B1>2 C1 C2 | A1 B1 C1 "
       "| A5 B2 C1",
       5},
      // The lighter target needs several hops of a name that the other one leaves free.
      {"A1..2 B1..2 C1..3 D1..2 E1..2 F1..2 | A1 B1 C1 D1 E1 F1 | A2 B2 D2 E2 F2 , C3", 2},
      // A2 is met after A3, to which it leads back; and A12, A13 and A14 from the last one on.
      {"A1 A2 A3 A4 A1>3 A3>4 A1>2! A2>3 B1 B2:A2 B3 B1>2 B2>3 | A1 B1 | A4 B3", 3},
      {"A1 A2:C2 A3 A4 A11 A12 A13 A14 A15 A1>2 A2>14 A2>3 A3>13 A3>4 A4>12 A1>11! A11>12 A12>13 "
       "A13>14 A14>15 C1 C2 | A1 C1 | A15 C1",
       5},
      // Equal totals, told apart by the third step from the end only.
      {"A1 A2 A3 A4 A5 A6 A7 A8 A9 A10 A11 A12 A1>2! A2>3 A3>4 A4>5 A1>6 A6>7 A7>8! A8>5 A1>10 "
       "A10>11! A11>12 A12>9 B1 | A1 B1 | A5 , A9",
       4},
      // Names that links bring in: chosen among several versions, then moved; and one that none
      // brings in.
      {"A1 A2:B[1,3) A3:B[3,4) A1>2 A2>3 B1..3 C1..3 | A1 C1 | A3 B3 C3", 2},
      {"A1..2 Z1 | A1 | A2 Z1", ~std::size_t{0}},
      // One that might come in at once by a dear hop, and hops only after it has come in.
      {"A1 A2 A3:N[1,3) A9:N1 A1>2 A2>3 A1>9! A9>3 N1:M1 N2 N1>2 M1 | A1 | A3 N2 M1", 3},
      // Requirements: both move at once, as each wants the other; B waits for A; C is not there.
      {"A1:&B1 A2:&B2 A1>2 B1:&A1 B2:&A2 B1>2 C1..2 | A1 B1 C1 | A2 B2 C2", 1},
      {"A1..3 B1:&A[1,3) B2:&A[2,4) B1>2 C1..2 | A1 B1 C1 | A3 B2 C2", 2},
      {"A1 A2:%C2 A3:&C2 A1>2 A2>3 B1..3 C1 C2 | A1 B1 | A2 B3", 2},
      {"A1 A2:%C2 A3:&C2 A1>2 A2>3 B1..3 C1 C2 | A1 B1 | A3 B3", ~std::size_t{0}},
      // What A requires only B's link brings in, and in the wrong version at first.
      {"A1 A2:&C2 A1>2 B1 B2:C1 B3:C2 B1>2 B2>3 C1..2 | A1 B1 | A2 B3", 2},
      // A source without what it requires has to bring it in at once.
      {"A1:&C1 B1 B2:C1 B1>2 B3 B1>3 C1 D1..2 | A1 B1 D1 | B2 D2", 1},
      {"A1:&C1 B1 B2:C1 B1>2 B3 B1>3 C1 D1..2 | A1 B1 D1 | B3 D2", ~std::size_t{0}},
  };
  for (const auto& [text, steps] : cases) {
    SCOPED_TRACE(text);
    TestQuestion question(text);
    ASSERT_TRUE(question.isPosed());
    const SearchQuestion asked = engineQuestion(question);
    const SearchAnswer expected = searchExhaustively(asked);
    EXPECT_EQ(expected.verdict == Verdict::Found ? expected.steps.size() : ~std::size_t{0}, steps);
    expectSame(expected, searchGoalDirected(asked));
    if (const auto learnt = answerByLearning(asked)) expectSame(expected, learnt->answer);
  }
}

TEST(Engines, AHopOnTheWayThatLeadsNowhereIsReported) {
  TestQuestion question("A1..3 A2>9 B1..3 | A1 B1 | A3 B3 | forward");
  ASSERT_TRUE(question.isPosed());
  const SearchQuestion asked = engineQuestion(question);
  const auto outcome = [&](const auto& search) {
    return test::outcomeOf([&] { return Path(search().steps); });
  };
  const std::string expected = outcome([&] { return searchExhaustively(asked); });
  EXPECT_TRUE(expected.starts_with("throws ")) << expected;
  EXPECT_EQ(outcome([&] { return searchGoalDirected(asked); }), expected);
}

TEST(Engines, ATargetWithAnEmptyEntryLacksTheName) {
  const std::string beginning = "A1..3 B1..3 C1:Z1 C2 C1>2 C2>1 Z1 | A1 B1 | * A3 ";
  for (const auto& [entry, steps] : {std::pair("Z-", 2U), std::pair("B-", 0U)}) {
    TestQuestion question(beginning + entry + " | forward");
    ASSERT_TRUE(question.isPosed());
    const SearchQuestion lacking = engineQuestion(question);
    const SearchAnswer expected = searchExhaustively(lacking);
    EXPECT_EQ(expected.steps.size(), steps);
    expectSame(expected, searchGoalDirected(lacking));
  }
}

TEST(Engines, ATargetOfAnotherRepositoryIsNeverReached) {
  TestQuestion question("A1..3 B1..3 | A1 B1 | ^ A3 B3 | forward");
  ASSERT_TRUE(question.isPosed());
  const SearchQuestion asked = engineQuestion(question);
  EXPECT_EQ(searchExhaustively(asked).verdict, Verdict::NoPath);
  EXPECT_EQ(searchGoalDirected(asked, learningPlanner()).verdict, Verdict::NoPath);
  EXPECT_EQ(answerByLearning(asked).value().answer.verdict, Verdict::NoPath);
}

TEST(Engines, ASourceOfAnotherRepositoryTakesTheFirstHopOfTheLeastWeight) {
  // The hop to B3 is equal to one that stands first but weighs more.
  TestQuestion question("A1 B1 B1>3! B1>2 B1>3 B2 B3 | ^ A1 B1 | A1");
  ASSERT_TRUE(question.isPosed());
  const SearchQuestion asked = engineQuestion(question);
  const SearchAnswer expected = searchExhaustively(asked);
  EXPECT_EQ(describe(Path(expected.steps)), "B1>2 => A1 B2\n");
  expectSame(expected, searchGoalDirected(asked));
}

TEST(Engines, LongPathsTakeNoStack) {
  TestQuestion question("A1..2000 | A1 | A2000 | forward");
  ASSERT_TRUE(question.isPosed());
  runOnSmallStack(
      [&] { EXPECT_EQ(searchGoalDirected(engineQuestion(question)).steps.size(), 1999U); });
}

/// "A1 B1 ... Z1 a1 ... z1" for "1".
std::string everyName(const std::string& what) {
  std::string result;
  for (char name = 'A'; name <= 'z'; ++name) {
    if (std::isalpha(name) != 0) result += std::string{' ', name} + what;
  }
  return result;
}

/// Metamodels A to Z and a to z, each at 1.0.0 to 3.0.0, and what there is besides.
TestRepository wideRepository(const std::string& more) {
  return TestRepository(everyName("1..3") + more);
}

TEST(Engines, LargeQuestionTellsOfEachBaselineOnce) {
  TestRepository repository = wideRepository("");
  const VersionBaseline source = repository.baseline(everyName("1"));
  const VersionBaseline target = repository.baseline(everyName("3"));
  Path path;
  std::vector<std::string> tried;
  for (const std::string& record :
       traceOf(4, [&] { path = repository.findPath(source, target); })) {
    const std::string mark = "4 Trying unvisited baseline with least weight: ";
    if (record.starts_with(mark)) tried.push_back(record.substr(mark.size()));
  }
  EXPECT_EQ(tried, (std::vector{printed(source), printed(path->at(0).to), printed(target)}));
}

TEST(Engines, LargeQuestionIsAnsweredAndMayHaveUnlinkableVersionsOffItsPaths) {
  // 3.0.0 to 4.0.0 leads past every target, and 4.0.0 cannot be linked.
  TestRepository repository = wideRepository(" A4:Z9 A3>4");
  const VersionBaseline source = repository.baseline(everyName("1"));
  repository.calls.clear();
  const Path path = repository.findPath(source, repository.baseline(everyName("3")));
  ASSERT_TRUE(path);
  expectLegal(repository, *path);
  EXPECT_EQ(path->size(), 2U);
  EXPECT_EQ(path->at(0).hops.size(), 52U);
  EXPECT_EQ(repository.callsOf("loadMetamodel").find("A4"), std::string::npos);
}

}  // namespace
}  // namespace test
