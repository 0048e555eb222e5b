#include <gtest/gtest.h>

#include "support/test_repository.hpp"
#include "support/trace_capture.hpp"

namespace test {
namespace {

using Lines = std::vector<std::string>;
using Selection = std::unordered_map<std::u16string, VersionId>;

constexpr auto forward = VersionRepository::Forward;
constexpr auto backward = VersionRepository::Backward;

bool contains(const Lines& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

TEST(Weight, ChargesExpensiveHopsAndOnePerOrdinaryStep) {
  const TestRepository repository;
  const auto weight = [&](int ordinary, int expensive) {
    LockstepHop hops;
    for (int i = 0; i < ordinary + expensive; ++i) {
      const std::u16string name(static_cast<std::size_t>(i) + 1, u'x');
      hops.emplace(name, Hop(name, v(1), v(2), i >= ordinary));
    }
    return repository.getWeight(hops);
  };
  EXPECT_EQ(weight(0, 0), 0U);
  EXPECT_EQ(weight(1, 0), 2U);
  EXPECT_EQ(weight(2, 0), 3U);
  EXPECT_EQ(weight(0, 1), 1'000'000'000U);
  EXPECT_EQ(weight(0, 7), 7'000'000'000U);
  EXPECT_EQ(weight(3, 2), 2'000'000'004U);
}

TEST(FindPath, LockstepBeatsSingleStepsAndOrdinaryBeatsExpensive) {
  TestRepository repository;
  repository.addLine(u"A", 4);
  repository.addLine(u"B", 2);
  repository.addHop(u"A", v(1), v(4), true);
  EXPECT_EQ(describe(repository.findPath(Selection{{u"A", v(1)}, {u"B", v(1)}},
                                         Selection{{u"A", v(4)}, {u"B", v(2)}})),
            "A@1.0.0->2.0.0 => A@2.0.0 B@1.0.0\n"
            "A@2.0.0->3.0.0 => A@3.0.0 B@1.0.0\n"
            "A@3.0.0->4.0.0 B@1.0.0->2.0.0 => A@4.0.0 B@2.0.0\n")
      << "B could move in any of the steps: the lighter baselines are reached first";
}

TEST(FindPath, TakesTheExpensiveHopWhereNothingElseLeads) {
  TestRepository repository;
  repository.addLine(u"A", 2);
  repository.add(u"A", v(3));
  repository.addHop(u"A", v(2), v(3), true);
  EXPECT_EQ(describe(repository.findPath(Selection{{u"A", v(1)}}, Selection{{u"A", v(3)}})),
            "A@1.0.0->2.0.0 => A@2.0.0\nA@2.0.0->3.0.0! => A@3.0.0\n");
}

TEST(FindPath, TellsNothingToDoFromNoPath) {
  TestRepository repository;
  repository.addLine(u"A", 2);
  repository.addLine(u"B", 2);
  const VersionBaseline a1 = repository.baseline({{u"A", v(1)}});
  const VersionBaseline b1 = repository.baseline({{u"B", v(1)}});
  const VersionBaseline a1b1 = repository.baseline({{u"A", v(1)}, {u"B", v(1)}});
  TraceCapture trace(4);
  EXPECT_EQ(describe(repository.findPath(a1b1, a1)), "");
  EXPECT_TRUE(trace.take().empty()) << "answered without a search";
  EXPECT_EQ(describe(repository.findPath({a1b1}, {a1}, forward)), "");
  EXPECT_TRUE(contains(trace.take(), "4 Reached target"));
  EXPECT_EQ(describe(repository.findPath({}, {a1}, forward)), "none");
  EXPECT_TRUE(contains(trace.take(), "4 Exhausted search"));
  EXPECT_EQ(describe(repository.findPath({a1}, {}, forward)), "none");
  EXPECT_EQ(describe(repository.findPath(a1, b1)), "none");
  EXPECT_EQ(describe(repository.findPath({repository.baseline({{u"A", v(2)}})}, {a1}, forward)),
            "none");
}

TEST(FindPath, SelectionsAreComparedCombinedAndSearched) {
  TestRepository repository;
  repository.addLine(u"B", 2);
  repository.add(u"A", v(1), {{u"B", between(2, 3)}});
  const Selection torn{{u"A", v(1)}, {u"B", v(1)}};
  repository.calls.clear();
  EXPECT_EQ(describe(repository.findPath(torn, torn)), "");
  EXPECT_TRUE(repository.calls.empty()) << "equal selections are not even looked up";
  EXPECT_EQ(describe(repository.findPath(torn, Selection{{u"B", v(2)}})), "none");
  EXPECT_EQ(describe(repository.findPath(Selection{{u"B", v(1)}}, torn)), "none");
  EXPECT_EQ(describe(repository.findPath(Selection{}, Selection{{u"B", v(2)}})), "none");
}

TEST(FindPath, BaselinesToSelectionAnswersOnEqualityOnly) {
  TestRepository repository;
  repository.addLine(u"A", 2);
  repository.addLine(u"B", 2);
  const VersionBaseline a1 = repository.baseline({{u"A", v(1)}});
  const VersionBaseline a1b1 = repository.baseline({{u"A", v(1)}, {u"B", v(1)}});
  TraceCapture trace(4);
  EXPECT_EQ(describe(repository.findPath(std::vector{a1b1, a1}, Selection{{u"A", v(1)}})), "");
  EXPECT_TRUE(trace.take().empty());
  EXPECT_EQ(describe(repository.findPath(std::vector{a1b1}, Selection{{u"A", v(1)}})), "");
  EXPECT_TRUE(contains(trace.take(), "4 Reached target")) << "inclusion is left to the search";
  EXPECT_EQ(describe(repository.findPath(std::vector{a1b1}, Selection{{u"A", v(2)}})),
            "A@1.0.0->2.0.0 => A@2.0.0 B@1.0.0\n");
  EXPECT_EQ(describe(repository.findPath(std::vector<VersionBaseline>(), Selection{{u"A", v(2)}})),
            "none");
}

TEST(FindPath, DirectionIsThatBetweenTheFirstBaselines) {
  TestRepository repository;
  repository.addLine(u"A", 3);
  repository.addHop(u"A", v(3), v(1));
  EXPECT_EQ(describe(repository.findPath(Selection{{u"A", v(3)}}, Selection{{u"A", v(1)}})),
            "A@3.0.0->1.0.0 => A@1.0.0\n");
  EXPECT_EQ(describe(repository.findPath(Selection{{u"A", v(3)}}, Selection{{u"A", v(2)}})), "none")
      << "going back to 1 and up again is no way down";
}

class PathCacheTest : public testing::Test {
 protected:
  PathCacheTest() {
    repository.addLine(u"S", 5);
    for (std::uint64_t number = 5; number > 1; --number) {
      repository.addHop(u"S", v(number), v(number - 1));
    }
    for (std::uint64_t number = 1; number <= 5; ++number) {
      s.push_back(repository.baseline({{u"S", v(number)}}));
    }
  }

  TestRepository repository;
  std::vector<VersionBaseline> s{VersionBaseline()};  // s[n] holds S at n.0.0
};

TEST_F(PathCacheTest, AnswersTheSameQuestionWithoutAnyCall) {
  const auto found = repository.findPath({s[1]}, {s[3]}, forward);
  repository.calls.clear();
  TraceCapture trace(4 | 8);
  EXPECT_EQ(describe(repository.findPath({s[1]}, {s[3]}, forward)), describe(found));
  EXPECT_TRUE(repository.calls.empty());
  EXPECT_EQ(trace.take(), (Lines{"4 Finding path from one of:", "4 Baseline {S@1.0.0}",
                                 "4 TO one of:", "4 Baseline {S@3.0.0}", "4 End of list",
                                 "4 Direction is Forward", "4 Found Path in cache",
                                 "4 Baseline {S@2.0.0}", "4 Baseline {S@3.0.0}"}));
  repository.invalidatePathfindingCache();
  EXPECT_EQ(describe(repository.findPath({s[1]}, {s[3]}, forward)), describe(found));
  EXPECT_FALSE(repository.calls.empty());
}

TEST_F(PathCacheTest, IsLookedUpBeforeTheTargetTestAndForTheFirstPairInListOrder) {
  const auto longPath = repository.findPath({s[1]}, {s[5]}, forward);
  const auto shortPath = repository.findPath({s[4]}, {s[5]}, forward);
  EXPECT_EQ(describe(repository.findPath({s[5], s[1]}, {s[5]}, forward)), describe(longPath));
  EXPECT_EQ(describe(repository.findPath({s[1], s[4]}, {s[5]}, forward)), describe(longPath));
  EXPECT_EQ(describe(repository.findPath({s[4], s[1]}, {s[2], s[5]}, forward)),
            describe(shortPath));
  EXPECT_EQ(describe(repository.findPath({s[5], s[2]}, {s[5]}, forward)), "");
}

TEST_F(PathCacheTest, IgnoresTheDirectionAsked) {
  const auto found = repository.findPath({s[1]}, {s[2]}, forward);
  EXPECT_EQ(describe(repository.findPath({s[1]}, {s[2]}, backward)), describe(found));
  EXPECT_EQ(describe(repository.findPath({s[1]}, {s[3]}, backward)), "none");
}

TEST_F(PathCacheTest, KeepsTheTargetAskedForAsKey) {
  repository.addLine(u"T", 2);
  const VersionBaseline s1t1 = repository.baseline({{u"S", v(1)}, {u"T", v(1)}});
  const auto found = repository.findPath({s1t1}, {s[2]}, forward);
  EXPECT_EQ(describe(found), "S@1.0.0->2.0.0 => S@2.0.0 T@1.0.0\n");
  repository.calls.clear();
  repository.findPath({s1t1}, {s[2]}, forward);
  EXPECT_TRUE(repository.calls.empty());
  repository.findPath({s1t1}, {found->back().to}, forward);
  EXPECT_FALSE(repository.calls.empty()) << "the baseline reached is another key";
}

TEST_F(PathCacheTest, KeepsNeitherFailuresNorEmptyPaths) {
  for (const auto& [from, to] : {std::pair(s[1], VersionBaseline()), std::pair(s[5], s[4])}) {
    repository.calls.clear();
    TraceCapture trace(8);
    repository.findPath({from}, {to}, forward);
    EXPECT_TRUE(trace.take().empty());
    TraceCapture again(4);
    repository.findPath({from}, {to}, forward);
    EXPECT_FALSE(contains(again.take(), "4 Found Path in cache"));
  }
}

TEST_F(PathCacheTest, IsEmptiedWhenAMetamodelIsLinked) {
  repository.findPath({s[1]}, {s[2]}, forward);
  repository.add(u"T", v(1));
  repository.only(u"S", v(1));
  repository.calls.clear();
  repository.findPath({s[1]}, {s[2]}, forward);
  EXPECT_TRUE(repository.calls.empty()) << "linked before: nothing new";
  repository.only(u"T", v(1));
  repository.findPath({s[1]}, {s[2]}, forward);
  EXPECT_FALSE(repository.calls.empty());
}

TEST_F(PathCacheTest, IsEmptiedInTheMiddleOfASearchThatLinks) {
  repository.findPath({s[1]}, {s[2]}, forward);
  repository.addLine(u"T", 2);
  const VersionBaseline t1 = repository.baseline({{u"T", v(1)}});
  repository.findPath({s[1]}, {s[2]}, forward);
  repository.findPath({t1}, {VersionBaseline(), s[1]}, forward);  // reached at once: nothing linked
  repository.calls.clear();
  repository.findPath({s[1]}, {s[2]}, forward);
  EXPECT_TRUE(repository.calls.empty());
  EXPECT_EQ(describe(repository.findPath({t1}, {s[1]}, forward)), "none");  // links T@2.0.0
  repository.calls.clear();
  repository.findPath({s[1]}, {s[2]}, forward);
  EXPECT_FALSE(repository.calls.empty());
}

TEST_F(PathCacheTest, StoreRecordsHaveALevelOfTheirOwn) {
  const Lines stored{"8 Emplace Path to cache:", "8 Baseline {S@1.0.0}",
                     "8 \t-> Baseline {S@2.0.0}", "8 \t-> Baseline {S@3.0.0}", "8 END OF PATH"};
  {
    TraceCapture trace(8);
    repository.findPath({s[1]}, {s[3]}, forward);
    EXPECT_EQ(trace.take(), stored);
  }
  repository.invalidatePathfindingCache();
  // While the search below runs, another one stores the same path: the records are written all the
  // same.
  bool asked = false;
  repository.onCall = [&](const std::string& call) {
    if (call != "findHops S@2.0.0" || std::exchange(asked, true)) return;
    repository.findPath({s[1]}, {s[3]}, forward);
  };
  TraceCapture trace(8);
  const auto path = repository.findPath({s[1]}, {s[3]}, forward);
  Lines twice = stored;
  twice.insert(twice.end(), stored.begin(), stored.end());
  EXPECT_EQ(trace.take(), twice);
  EXPECT_EQ(path->size(), 2U);
}

TEST_F(PathCacheTest, DuplicateSourcesAreProcessedOnce) {
  TraceCapture trace(4);
  repository.findPath({s[4], s[4]}, {s[1]}, forward);
  const Lines records = trace.take();
  EXPECT_EQ(std::count(records.begin(), records.end(),
                       "4 Trying unvisited baseline with least weight: Baseline {S@4.0.0}"),
            1);
}

TEST(FindPath, SearchLinksTheTargetsOfProcessedBaselinesOnly) {
  TestRepository repository;
  repository.addLine(u"A", 5);
  const VersionBaseline from = repository.baseline({{u"A", v(1)}});
  const VersionBaseline to = repository.baseline({{u"A", v(3)}});
  repository.calls.clear();
  repository.findPath(from, to);
  EXPECT_EQ(repository.callsOf("loadMetamodel"), Lines{"A@2.0.0"});
}

}  // namespace
}  // namespace test
