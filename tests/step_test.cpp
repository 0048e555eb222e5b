#include <gtest/gtest.h>

#include <stdexcept>

#include "pathfinder/search/step_generation.hpp"
#include "support/engine_question.hpp"
#include "support/path_finder_errors.hpp"
#include "support/test_repository.hpp"
#include "support/trace_capture.hpp"

namespace test {
namespace {

TEST(Steps, AreTriedAsMixedRadixNumbersFirstNameLeastSignificant) {
  TestRepository repository("A1..3 A1>3 B1..2 C1 D1 E1 F1");
  const VersionBaseline from = repository.baseline("A1 B1 C1 D1 E1 F1");
  VersionBaseline otherOrder;
  otherOrder.metamodels.rehash(101);
  for (const auto& [name, linked] : from.metamodels) otherOrder.tryEmplace(linked);
  for (const auto& start : {from, otherOrder}) {
    repository.calls.clear();
    EXPECT_EQ(describe(repository.getStepsFrom(start, forward)),
              "A1>2 => A2 B1 C1 D1 E1 F1\n"
              "A1>3 => A3 B1 C1 D1 E1 F1\n"
              "B1>2 => A1 B2 C1 D1 E1 F1\n"
              "A1>2 B1>2 => A2 B2 C1 D1 E1 F1\n"
              "A1>3 B1>2 => A3 B2 C1 D1 E1 F1\n");
    EXPECT_EQ(repository.callsOf("findHops"), "A1 B1 C1 D1 E1 F1");
  }
}

TEST(Steps, EveryRecordIsTraced) {
  TestRepository repository("A1:B1 A2:B1+C[1,3) A1>2 B1..2 C1 C2");
  const VersionBaseline from = repository.baseline("A1");
  std::vector<BaselineHop> steps;
  const auto records = traceOf(4, [&] { steps = repository.getStepsFrom(from, forward); });
  ASSERT_EQ(describe(steps), "A1>2 => A2 B1 C1\nA1>2 => A2 B1 C2\n");
  const std::string retained = "4 Retained 1 hops after direction filtering";
  const std::string conflict = "4 \tConflict found while creating target baseline, Ignored";
  EXPECT_EQ(records,
            (std::vector<std::string>{
                "4 getStepsFrom " + printed(from), "4 Found 1 hops from A@1.0.0", retained,
                "4 Found 1 hops from B@1.0.0", retained, "4 count of possible hop permutations=4",
                "4 Attempting Lockstep {Hop {A@1.0.0->2.0.0}}", "4 \tHop produced 2 candidates:",
                "4 \t\t" + printed(steps[0].to), "4 \t\t" + printed(steps[1].to),
                "4 \tEnd of list of hops", "4 Attempting Lockstep {Hop {B@1.0.0->2.0.0}}", conflict,
                "4 Attempting Lockstep {Hop {A@1.0.0->2.0.0}, Hop {B@1.0.0->2.0.0}}", conflict,
                "4 getStepsFrom " + printed(from) + " RETURNS 2 items:",
                "4 " + printed(steps[0].to), "4 " + printed(steps[1].to)}));
}

TEST(Steps, DropHopsAgainstTheDirectionOnly) {
  TestRepository repository(
      "A1 A2 A0.9 Anew~3 Aold A1>1 A1>2 A1>0.9 A1>new A1>old Aold>1 Aold>old");
  const std::string all =
      "A1>1 => A1\nA1>2 => A2\nA1>0.9.0 => A0.9.0\nA1>new => Anew\nA1>old => Aold\n";
  EXPECT_EQ(repository.steps("A1", anyDirection), all);
  EXPECT_EQ(repository.steps("A1", VersionRepository::Equal), all);
  EXPECT_EQ(repository.steps("A1"), "A1>1 => A1\nA1>2 => A2\nA1>new => Anew\n");
  EXPECT_EQ(repository.steps("A1", backward), "A1>1 => A1\nA1>0.9.0 => A0.9.0\nA1>old => Aold\n");
  EXPECT_EQ(repository.steps("Aold"), "Aold>1 => A1\nAold>old => Aold\n");
}

TEST(Steps, HopTargetsAreLookedUpByOwnNameForDirectionAndByKeyForTheTarget) {
  class Misnaming : public TestRepository {
   public:
    using TestRepository::TestRepository;
    void findHops(const std::u16string& /*name*/, const VersionId& from,
                  std::vector<Hop>& result) override {
      TestRepository::findHops(u"B", from, result);
    }
  } misnaming("A1..2 B1..2");
  EXPECT_EQ(misnaming.steps("A1"), "A1>2 => A2\n");
  EXPECT_EQ(misnaming.callsOf("getMetamodel"), "B2 A2");
}

TEST(Steps, OneUnlinkableTargetEndsTheOperation) {
  TestRepository repository("A1..2 B1 B2:A7 B1>2");
  EXPECT_THROW(repository.steps("A1 B1"), Conflict);
  EXPECT_THROW(repository.path("A1 B1", "A2"), Conflict) << "though A's hop reaches the target";
}

TEST(Steps, TooManyToListIsALengthErrorBeforeAnyAttempt) {
  TestRepository repository("");
  std::string selected;
  const auto addNameWith15Hops = [&](const std::string& name) {
    repository.add(name + "1 " + name + "2");
    for (int i = 0; i < 15; ++i) repository.add(name + "1>2");
    selected += name + "1 ";
  };
  for (char name = 'A'; name < 'P'; ++name) addNameWith15Hops({name});
  EXPECT_THROW(repository.steps(selected, anyDirection), std::length_error);
  EXPECT_EQ(repository.calls.size(), 15U) << "one findHops for each name, and nothing else";
  const VersionBaseline from = repository.baseline(selected);
  EXPECT_THROW(
      StepGeneration(accessTo(repository), from, tarn::evolution::pathfinder::Direction::Unknown)
          .run(),
      std::length_error);
  addNameWith15Hops("P");
  EXPECT_EQ(repository.steps(selected, anyDirection), "") << "the count wraps to zero";
}

TEST(Steps, HopToAnUnknownVersionIsALogicErrorWhenFiltered) {
  TestRepository repository("A1 A1>7.8.9");
  EXPECT_EQ(repository.steps("A1", anyDirection), "");
  const std::string message = messageOf<std::logic_error>([&] { repository.steps("A1"); });
  EXPECT_NE(message.find("version 7.8.9 of metamodel \"A\""), std::string::npos) << message;
}

TEST(TargetBaselines, KeepWhatDoesNotMoveAndResolveWhatFits) {
  TestRepository repository("C1..3 A1 A2:C[1,4) B1..2");
  const VersionBaseline from = repository.baseline("A1 B1");
  const auto targets = [&](const std::string& moves) {
    LockstepHop hops;
    for (const auto& [name, to] : selection(moves)) hops.emplace(name, Hop(name, v(1), to, false));
    return describe(repository.createTargetBaseline(from, hops));
  };
  EXPECT_EQ(targets(""), "");
  EXPECT_EQ(targets("A2"), "A2 B1 C1, A2 B1 C2, A2 B1 C3");
  EXPECT_EQ(targets("A2 B2 C3"), "A2 B2 C3") << "a metamodel that is not held is brought in";
  EXPECT_EQ(targets("A2 Blost"), "");
}

}  // namespace
}  // namespace test
