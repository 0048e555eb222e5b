// Asks for ways between selections of which nothing is linked, as a search that links all does.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "pathfinder/learning/random_choices.hpp"
#include "pathfinder/learning/selection_search.hpp"
#include "support/engine_question.hpp"
#include "support/hard_questions.hpp"
#include "support/legal_path.hpp"
#include "support/path_finder_errors.hpp"
#include "support/random_question.hpp"
#include "support/random_run.hpp"
#include "support/test_question.hpp"

namespace test {
namespace {

/// Asks for the way from one selection to another, of which nothing is linked beforehand, in their
/// own direction or another one. Whether that is settled without linking all.
bool compareSelections(const QuestionText& question, SelectionPlanning planning, RandomRun* run,
                       std::optional<VersionRepository::Direction> direction = std::nullopt) {
  if ((question.from + question.to).find_first_of(",^*") != std::string::npos) return false;
  const auto from = selection(question.from);
  const auto to = selection(question.to);
  if (from == to || from.empty()) return false;
  TestRepository linking(question.catalogue);
  TestRepository repository(question.catalogue);
  const auto note = [&](const char* kind, bool is) {
    if (run != nullptr) run->count(kind, is);
  };
  std::string expected;
  try {
    expected = describe(
        direction ? linking.findPath(linking.combine(from), linking.combine(to), *direction)
                  : linking.findPath(from, to));
  } catch (...) {
    expected.clear();  // what a question that links everything meets
  }
  SelectionAnswer found;
  try {
    std::optional<Direction> asked;
    if (direction) asked = Direction(*direction);
    found = searchBetweenSelections(accessTo(repository), {from, to, asked}, planning);
  } catch (...) {
    // Dependencies do not tell that a source is inconsistent by what the application links.
    const bool isWilful = question.catalogue.find('=') != std::string::npos;
    EXPECT_TRUE(expected.empty() || (expected == "none" && isWilful)) << expected;
    return false;
  }
  note("settled", found.isSettled);
  if (!found.isSettled || expected.empty()) return found.isSettled;
  const Path path = found.path ? Path(found.path->steps) : std::nullopt;
  EXPECT_EQ(describe(path), expected);
  note("paths", path.has_value());
  note("paths beside failures", path.has_value() && !repository.failing.empty());
  if (!path || path->empty()) return true;
  const bool isWilful = question.catalogue.find_first_of("?@-~=") != std::string::npos;
  if (!isWilful) expectLegal(repository, *path);
  // What was linked alone is what a list would have.
  for (const auto& [name, linked] : path->back().to.metamodels) {
    const auto& all = repository.getLinkedMetamodels(*linked);
    EXPECT_NE(std::find(all.begin(), all.end(), linked), all.end());
  }
  EXPECT_EQ(describe(direction ? repository.findPathInDirection(from, to, *direction)
                               : repository.findPath(from, to)),
            expected);
  return true;
}

/// The question with some versions at which the application fails.
std::string withFailures(const std::string& text, Random& random) {
  std::string failures;
  for (const Metamodel& metamodel : TestRepository(QuestionText(text).catalogue).metamodels) {
    const char* const calls[] = {"?hops ", "?get ", "?load "};
    if (random.chance(10))
      failures += brief(metamodel.name, metamodel.version) + random.oneOf(calls);
  }
  return failures + text;
}

TEST(Engines, AgreeBetweenSelectionsOfWhichNothingIsLinkedBeforehand) {
  RandomRun run(4000);
  const auto makeAny = [](Random& random) {
    if (random.chance(20)) return hardQuestion(random.oneOf(difficulties()), random);
    if (random.chance(40)) return randomQuestion(random);
    QuestionDraft draft = random.chance(40) ? QuestionDraft::heads(random, 1 + random.upTo(4))
                                            : QuestionDraft::closed(random, 1 + random.upTo(3));
    if (random.chance(40)) draft.addRequirements(random, random.chance(50) ? 15 : 40);
    return draft.text(random);
  };
  const auto make = [&](Random& random) {
    const std::string text = makeAny(random);
    return random.chance(30) ? withFailures(text, random) : text;
  };
  run.ask(make, [&](const std::string& text, Random& random) {
    std::optional<RandomChoices> choices;
    if (random.chance(50)) choices.emplace(random());
    std::optional<VersionRepository::Direction> direction;
    if (random.chance(40)) direction = VersionRepository::Direction(random.below(4));
    for (const auto planning : {SelectionPlanning::BackwardFirst, SelectionPlanning::ByLearning}) {
      compareSelections(QuestionText(text), planning, &run, direction);
    }
  });
  run.expectPercentages({{"settled", 80}, {"paths", 25}, {"paths beside failures", 0.5}});
}

TEST(Engines, AgreeBetweenSelectionsMadeToMislead) {
  const std::pair<const char*, bool> cases[] = {
      // A version without an order beside one that has a direction, which a hop of A's goes
      // against.
      {"A1 A3 A5 A1>5 A5>3 A1>3! Bx By Bx>y | A1 Bx | A3 By", true},
      // Hops that lead to the target by turns.
      {"A1 A2 A3 A4 A1>3! A1>2 A2>3 A3>4 | A1 | A4", true},
      // Of A only what C admits can be held, which gives the question a direction, or none.
      {"A1 A2 A3 A2>1 B1:A[1,4) B2:A[1,4) B1>2 C1:A2 C2:A1 C1>2 | B1 C1 | B2 C2", true},
      // The first start has the later hop.
      {"A1 A2 A3 A1>2 A1>3 A2>3 B1:A[1,3) B2:A3 B1>2 | B1 | A3 B2", true},
      // What a plain search reports, or what names alone do not tell.
      {"A1..3 A2>9 B1..3 | A1 B1 | A3 B3", false},
      {"A1..2 B1..2 A1>2@B | A1 B1 | A2 B2", false},
      {"A1..3 B1:A[1,3)+A[2,4) B2 B1>2 | A2 B1 | A3 B2", false},
      {"A1..2 B1:C1 B2 B1>2 | A1 B1 | A2 B2 C1", false},
      // Dependencies lead back to a name, which stands back: from the start, and after a hop.
      {"C1:Q1 C5 Q1:C5 C1>5 | C1 Q1 | C5", false},
      {"V1:M3 M1:V1 M3 A1 | M1 A1 | A1", false},
      {"C1 C2:Q1 C3 Q1:C3 C1>2 D1..2 D1>2 | C1 D1 | C2 D2", false},
      // Names that come in on the way: one that hops on, one that brings in another, one that comes
      // in at either of two versions, and one that nothing brings in.
      {"A1 A2:B[1,3) A3:B3 A1>2 A2>3 B1..3 | A1 | A3 B3", true},
      {"A1 A2:B1 A1>2 B1:C[1,3) C1..2 | A1 | A2 C2", true},
      {"A1 A2:B[1,4) A3:B2 A1>2 A2>3 B1..3 | A1 | A3", true},
      {"A1..2 Z1 | A1 | A2 Z1", true},
      // One that the source brings in only beside what is not the target's.
      {"O1 J3 J4:O1 Q1:J[3,5) | Q1 | O1 J3", true},
      // One that only the application links.
      {"A1=B1 A2 A1>2 B1..2 | A1 | B2", false},
      // One that the source brings in by one of two versions only.
      {"A1..3 B1:A[1,4) B2:A3 B1>2 A2:C1 C1..2 | B1 | B2 C2", true},
      {"A1..3 B1 B2:A[1,3)+A[2,4) B3 B1>2 B2>3 | A2 B1 | A2 B3", false},
      // The application links what nothing can stand beside, wherever the other names are then.
      {"A1 A2=C1 A3 A1>2 A2>3 B1..9 C1..2 D1..9 E1..9 F1..9 | A1 B1 C2 D1 E1 F1 | A3 B9 C2 D9 E9 "
       "F9",
       true},
  };
  for (const auto& [text, isSettled] : cases) {
    SCOPED_TRACE(text);
    for (const auto planning : {SelectionPlanning::BackwardFirst, SelectionPlanning::ByLearning}) {
      EXPECT_EQ(compareSelections(QuestionText(text), planning, nullptr), isSettled);
    }
  }
}

TEST(Engines, WhereOnlyWhatCannotBeLinkedWouldLeadIsAConflictBetweenSelectionsToo) {
  const std::pair<const char*, bool> cases[] = {
      {"A1 A2:C1+B2 A3 A1>2 A2>3 B1 B2:C2 C1..2 | A1 | A3", true},
      {"A1 A2:C1+B2 A3 A1>2 A2>3 A1>3! B1 B2:C2 C1..2 | A1 | A3", false},
      {"A1 A2:C9 A3 A1>2 A2>3 | A1 | A3", true},
      {"A1 A2 A3:D1 A1>2 A2>3 D1:E1 E2 | A1 | A3", true},
      {"A1..3 B1:A1 B2:A3 B1>2 | A1 B1 | A3 B2", false},  // it can be linked, but not held
  };
  for (const auto& [text, isConflict] : cases) {
    SCOPED_TRACE(text);
    const QuestionText question(text);
    for (const auto planning : {SelectionPlanning::BackwardFirst, SelectionPlanning::ByLearning}) {
      TestRepository repository(question.catalogue);
      const auto search = [&] {
        const auto from = selection(question.from);
        const auto to = selection(question.to);
        searchBetweenSelections(accessTo(repository), {from, to}, planning);
      };
      if (isConflict) {
        EXPECT_THROW(search(), Conflict);
        EXPECT_THROW(TestRepository(question.catalogue)
                         .findPath(selection(question.from), selection(question.to)),
                     Conflict);
      } else {
        EXPECT_NO_THROW(search());
      }
    }
  }
}

}  // namespace
}  // namespace test
