#include <gtest/gtest.h>

#include <stdexcept>

#include "messages/report_exception.hpp"
#include "support/test_repository.hpp"
#include "support/trace_capture.hpp"

namespace test {
namespace {

using Lines = std::vector<std::string>;

constexpr auto forward = VersionRepository::Forward;
constexpr auto anyDirection = VersionRepository::Unknown;

/// "Attempting" records without that word.
Lines attempts(const Lines& records) {
  const std::string start = "4 Attempting ";
  Lines result;
  for (const std::string& record : records) {
    if (record.starts_with(start)) result.push_back(record.substr(start.size()));
  }
  return result;
}

TEST(Steps, AreTriedAsMixedRadixNumbersFirstNameLeastSignificant) {
  TestRepository repository;
  repository.addLine(u"A", 3);
  repository.addHop(u"A", v(1), v(3));
  repository.addLine(u"B", 2);
  repository.addLine(u"Z", 1);
  const VersionBaseline from = repository.baseline({{u"B", v(1)}, {u"Z", v(1)}, {u"A", v(1)}});
  TraceCapture trace(4);
  const auto steps = repository.getStepsFrom(from, forward);
  const std::string a2 = "Hop {A@1.0.0->2.0.0}";
  const std::string a3 = "Hop {A@1.0.0->3.0.0}";
  const std::string b2 = "Hop {B@1.0.0->2.0.0}";
  EXPECT_EQ(attempts(trace.take()),
            (Lines{"Lockstep {" + a2 + "}", "Lockstep {" + a3 + "}", "Lockstep {" + b2 + "}",
                   "Lockstep {" + a2 + ", " + b2 + "}", "Lockstep {" + a3 + ", " + b2 + "}"}));
  EXPECT_EQ(steps.size(), 5U);
  EXPECT_EQ(steps[4].from, from);
  EXPECT_EQ(describe(steps[4].to), "A@3.0.0 B@2.0.0 Z@1.0.0");
}

TEST(Steps, EqualBaselinesListEqualSteps) {
  TestRepository repository;
  std::vector<std::shared_ptr<LinkedMetamodel>> linked;
  for (const auto* name : {u"A", u"B", u"C", u"D", u"E", u"F"}) {
    repository.addLine(name, 2);
    linked.push_back(repository.only(name, v(1)));
  }
  VersionBaseline backwards;
  backwards.metamodels.rehash(101);
  std::for_each(linked.rbegin(), linked.rend(), [&](const auto& m) { backwards.tryEmplace(m); });
  EXPECT_EQ(describe(repository.getStepsFrom(*VersionBaseline::create(linked), forward)),
            describe(repository.getStepsFrom(backwards, forward)));
}

TEST(Steps, EveryRecordIsTraced) {
  TestRepository repository;
  repository.addLine(u"B", 2);
  repository.add(u"A", v(1), {{u"B", between(1, 2)}});
  repository.add(u"A", v(2), {{u"B", between(1, 3)}});
  repository.addHop(u"A", v(1), v(2));
  repository.addHop(u"A", v(1), u"lost");
  const VersionBaseline from = repository.baseline({{u"A", v(1)}});
  TraceCapture trace(4);
  const auto steps = repository.getStepsFrom(from, anyDirection);
  ASSERT_EQ(steps.size(), 2U);
  const std::string a2b1 = printed(steps[0].to);
  const std::string a2b2 = printed(steps[1].to);
  const std::string conflict = "4 \tConflict found while creating target baseline, Ignored";
  EXPECT_EQ(trace.take(),
            (Lines{"4 getStepsFrom " + printed(from),
                   "4 Found 2 hops from A@1.0.0",
                   "4 Found 1 hops from B@1.0.0",
                   "4 count of possible hop permutations=6",
                   "4 Attempting Lockstep {Hop {A@1.0.0->2.0.0}}",
                   "4 \tHop produced 1 candidates:",
                   "4 \t\t" + a2b1,
                   "4 \tEnd of list of hops",
                   "4 Attempting Lockstep {Hop {A@1.0.0->lost}}",
                   conflict,
                   "4 Attempting Lockstep {Hop {B@1.0.0->2.0.0}}",
                   conflict,
                   "4 Attempting Lockstep {Hop {A@1.0.0->2.0.0}, Hop {B@1.0.0->2.0.0}}",
                   "4 \tHop produced 1 candidates:",
                   "4 \t\t" + a2b2,
                   "4 \tEnd of list of hops",
                   "4 Attempting Lockstep {Hop {A@1.0.0->lost}, Hop {B@1.0.0->2.0.0}}",
                   conflict,
                   "4 getStepsFrom " + printed(from) + " RETURNS 2 items:",
                   "4 " + a2b1,
                   "4 " + a2b2}));
}

TEST(Steps, DropHopsAgainstTheDirectionOnly) {
  TestRepository repository;
  for (const VersionId& version : {VersionId(v(1)), VersionId(v(2)), VersionId(SemVer{0, 9, 0}),
                                   VersionId(u"same"), VersionId(u"old")}) {
    repository.add(u"A", version);
    repository.addHop(u"A", v(1), version);
    repository.addHop(u"A", u"old", version);
  }
  repository.addEquivalent(u"A", u"same", v(1));
  const auto targets = [&](const VersionId& from, VersionRepository::Direction direction) {
    std::string result;
    for (const BaselineHop& step :
         repository.getStepsFrom(repository.baseline({{u"A", from}}), direction)) {
      result += printed(step.hops.at(u"A").to) + " ";
    }
    return result;
  };
  EXPECT_EQ(targets(v(1), anyDirection), "1.0.0 2.0.0 0.9.0 same old ");
  EXPECT_EQ(targets(v(1), forward), "1.0.0 2.0.0 same ");
  EXPECT_EQ(targets(v(1), VersionRepository::Backward), "1.0.0 0.9.0 same old ");
  EXPECT_EQ(targets(v(1), VersionRepository::Equal), "1.0.0 2.0.0 0.9.0 same old ");
  EXPECT_EQ(targets(u"old", forward), "1.0.0 2.0.0 0.9.0 same old ");

  TraceCapture trace(4);
  targets(v(1), forward);
  const Lines records = trace.take();
  EXPECT_EQ(records.at(1), "4 Found 5 hops from A@1.0.0");
  EXPECT_EQ(records.at(2), "4 Retained 3 hops after direction filtering");
}

TEST(Steps, HopTargetsAreLookedUpByOwnNameForDirectionAndByKeyForTheTarget) {
  TestRepository repository;
  repository.addLine(u"A", 2);
  repository.addLine(u"B", 2);
  class Misnaming : public TestRepository {
   public:
    void findHops(const std::u16string& name, const VersionId& from,
                  std::vector<Hop>& result) override {
      TestRepository::findHops(name, from, result);
      if (name == u"A") result.emplace_back(u"B", v(1), v(2), false);
    }
  } misnaming;
  misnaming.addLine(u"A", 2);
  misnaming.addLine(u"B", 2);
  const VersionBaseline from = misnaming.baseline({{u"A", v(1)}});
  misnaming.calls.clear();
  const auto steps = misnaming.getStepsFrom(from, forward);
  EXPECT_EQ(misnaming.callsOf("getMetamodel"), (Lines{"A@2.0.0", "B@2.0.0", "A@2.0.0", "A@2.0.0"}));
  ASSERT_EQ(steps.size(), 2U);
  EXPECT_EQ(describe(steps[1].to), "A@2.0.0");
}

TEST(Steps, LinkOnlyTheTargetsThatAreTried) {
  TestRepository repository;
  repository.addLine(u"A", 3);
  const VersionBaseline from = repository.baseline({{u"A", v(1)}});
  repository.calls.clear();
  repository.getStepsFrom(from, forward);
  EXPECT_EQ(repository.callsOf("loadMetamodel"), Lines{"A@2.0.0"});
}

TEST(Steps, OneUnlinkableTargetEndsTheOperation) {
  TestRepository repository;
  repository.addLine(u"A", 2);
  repository.add(u"B", v(1));
  repository.add(u"B", v(2), {{u"A", between(7, 8)}});
  repository.addHop(u"B", v(1), v(2));
  const VersionBaseline from = repository.baseline({{u"A", v(1)}, {u"B", v(1)}});
  const VersionBaseline to = repository.baseline({{u"A", v(2)}});
  using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies,
                                                       std::exception, void>;
  EXPECT_THROW(repository.getStepsFrom(from, forward), Conflict);
  EXPECT_THROW(repository.findPath(from, to), Conflict) << "even though A's hop reaches the target";
}

TEST(Steps, TooManyToListIsALengthErrorBeforeAnyAttempt) {
  TestRepository repository;
  std::unordered_map<std::u16string, VersionId> selection;
  for (char16_t name = u'A'; name < u'A' + 62; ++name) {
    repository.addLine(std::u16string(1, name), 2);
    selection.emplace(std::u16string(1, name), v(1));
  }
  const VersionBaseline from = repository.baseline(selection);
  repository.calls.clear();
  EXPECT_THROW(repository.getStepsFrom(from, anyDirection), std::length_error);
  EXPECT_EQ(repository.callsOf("findHops").size(), 62U);
  EXPECT_TRUE(repository.callsOf("getMetamodel").empty());
}

TEST(Steps, CountThatWrapsToNothingTriesNothing) {
  TestRepository repository;
  std::unordered_map<std::u16string, VersionId> selection;
  for (char16_t name = u'A'; name < u'A' + 64; ++name) {
    repository.addLine(std::u16string(1, name), 2);
    selection.emplace(std::u16string(1, name), v(1));
  }
  EXPECT_TRUE(repository.getStepsFrom(repository.baseline(selection), anyDirection).empty());
}

#ifdef NDEBUG
TEST(Steps, HopToAnUnknownVersionIsALogicErrorWhenFiltered) {
#else
TEST(StepsDeathTest, HopToAnUnknownVersionFailsAnAssertionWhenFiltered) {
#endif
  TestRepository repository;
  repository.addLine(u"A", 1);
  repository.addHop(u"A", v(1), SemVer{7, 8, 9});
  const VersionBaseline from = repository.baseline({{u"A", v(1)}});
  EXPECT_TRUE(repository.getStepsFrom(from, anyDirection).empty());
#ifdef NDEBUG
  try {
    repository.getStepsFrom(from, forward);
    FAIL() << "no exception";
  } catch (const std::logic_error& error) {
    EXPECT_NE(std::string(error.what()).find("version 7.8.9 of metamodel \"A\""), std::string::npos)
        << error.what();
  }
#else
  EXPECT_DEATH(repository.getStepsFrom(from, forward), "cannot return");
#endif
}

TEST(TargetBaselines, KeepWhatDoesNotMoveAndResolveWhatFits) {
  TestRepository repository;
  repository.addLine(u"C", 3);
  repository.add(u"A", v(1));
  repository.add(u"A", v(2), {{u"C", between(1, 4)}});
  repository.addLine(u"B", 2);
  const auto hop = [](const std::u16string& name, const VersionId& to) {
    return std::pair(name, Hop(name, v(1), to, false));
  };
  const VersionBaseline from = repository.baseline({{u"A", v(1)}, {u"B", v(1)}});
  const auto targets = [&](const LockstepHop& hops) {
    Lines result;
    for (const auto& target : repository.createTargetBaseline(from, hops)) {
      result.push_back(describe(target));
    }
    return result;
  };
  EXPECT_TRUE(targets({}).empty());
  EXPECT_EQ(targets({hop(u"A", v(2))}), (Lines{"A@2.0.0 B@1.0.0 C@1.0.0", "A@2.0.0 B@1.0.0 C@2.0.0",
                                               "A@2.0.0 B@1.0.0 C@3.0.0"}));
  EXPECT_EQ(targets({hop(u"A", v(2)), hop(u"C", v(3)), hop(u"B", v(2))}),
            Lines{"A@2.0.0 B@2.0.0 C@3.0.0"})
      << "a hop of a metamodel that is not held brings it in";
  EXPECT_TRUE(targets({hop(u"A", v(2)), hop(u"B", u"lost")}).empty());
}

}  // namespace
}  // namespace test
