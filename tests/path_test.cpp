#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <thread>

#include "platform/exception.hpp"
#include "platform/text.hpp"
#include "support/random_question.hpp"
#include "support/test_question.hpp"
#include "support/trace_capture.hpp"

namespace test {
namespace {

using Lines = std::vector<std::string>;
using Baselines = std::vector<VersionBaseline>;

constexpr const char* reached = "4 Reached target";
constexpr const char* exhausted = "4 Exhausted search";

TEST(Weight, ChargesExpensiveHopsAndOnePerOrdinaryStep) {
  const TestRepository repository("A1>2! B1>2! C1>2! D1>2! E1>2! F1>2 G1>2 H1>2");
  LockstepHop hops;
  std::string weights = std::to_string(repository.getWeight(hops));
  for (const Hop& hop : repository.hops) {
    hops.emplace(hop.name, hop);
    weights += " " + std::to_string(repository.getWeight(hops));
  }
  EXPECT_EQ(weights,
            "0 1000000000 2000000000 3000000000 4000000000 5000000000 "
            "5000000002 5000000003 5000000004");
}

TEST(FindPath, BetweenSelections) {
  using std::string;
  const std::tuple<string, string, string, string> cases[] = {
      // Lockstep beats single steps, and ordinary hops beat expensive ones. B could move in any of
      // the steps: the lighter baselines are reached first.
      {"A1..4 B1..2 A1>4!", "A1 B1", "A4 B2", "A1>2 => A2 B1\nA2>3 => A3 B1\nA3>4 B1>2 => A4 B2\n"},
      {"A1..2 A3 A2>3!", "A1", "A3", "A1>2 => A2\nA2>3! => A3\n"},
      // The direction is that between the first baselines: back and up again is no way down.
      {"A1..3 A3>1", "A3", "A1", "A3>1 => A1\n"},
      {"A1..3 A3>1", "A3", "A2", "none"},
      // Selections that cannot be combined.
      {"B1..2 A1:B2", "A1 B1", "A1 B1", ""},
      {"B1..2 A1:B2", "A1 B1", "B2", "none"},
      {"B1..2 A1:B2", "B1", "A1 B1", "none"},
  };
  for (const auto& [catalogue, from, to, expected] : cases) {
    TestRepository repository(catalogue);
    EXPECT_EQ(describe(repository.findPath(selection(from), selection(to))), expected)
        << catalogue << ": " << from << " to " << to;
    EXPECT_EQ(repository.calls.empty(), from == to) << "equal selections are not even looked up";
  }
}

TEST(FindPath, TellsNothingToDoFromNoPath) {
  TestRepository repository("A1..3 A3>1 B1..2");
  const Baselines a = repository.baselines("A1, A2, A3");
  const Baselines downFirst = repository.baselines("A3, A1");
  const auto path = [&](const auto&... ends) { return describe(repository.findPath(ends...)); };
  const Baselines a1b1 = repository.baselines("A1 B1");
  const Baselines both = repository.baselines("A1 B1, A1");
  const std::tuple<std::function<std::string()>, std::string, std::string> cases[] = {
      // Answered without a search: inclusion in the one baseline, equality to one of several.
      {[&] { return path(a1b1[0], a[0]); }, "", ""},
      {[&] { return path(both, selection("A1")); }, "", ""},
      {[&] { return path(a1b1, selection("A1")); }, "", reached},
      {[&] { return path(Baselines(), selection("A1")); }, "none", exhausted},
      // The direction is that between the first baselines: back and up again is no way down.
      {[&] { return path(a[2], a[1]); }, "none", exhausted},
      {[&] { return path(downFirst, selection("A2")); }, "none", exhausted},
      {[&] { return repository.path("A1 B1", "A1"); }, "", reached},
      {[&] { return repository.path("", "A1"); }, "none", exhausted},
      {[&] { return repository.path("A1", ""); }, "none", exhausted},
      {[&] { return repository.path("A2", "A1"); }, "none", exhausted},
      {[&] { return repository.path("A1", "B1"); }, "none", exhausted},
      {[&] { return repository.path("A1 B1", "A2"); }, "A1>2 => A2 B1\n", reached},
  };
  for (const auto& [ask, found, lastRecord] : cases) {
    const Lines records = traceOf(4, [&, &ask = ask, &found = found] { EXPECT_EQ(ask(), found); });
    EXPECT_EQ(records.empty() ? "" : records.back(), lastRecord);
  }
}

TEST(FindPath, TakesListsInBracesForWhatTheyMean) {
  TestRepository repository("Ax Ay Bx By Ax>y Bx>y");
  const Path path = repository.findPath({{u"A", u"x"}}, {{u"A", u"y"}});
  EXPECT_EQ(describe(path), "Ax>y => Ay\n");
  EXPECT_EQ(
      describe(repository.findPath({{u"A", u"x"}, {u"B", u"x"}}, {{u"A", u"y"}, {u"B", u"x"}})),
      "Ax>y => Ay Bx\n");
  const VersionBaseline& from = path->front().from;
  EXPECT_EQ(describe(repository.findPath({from}, {{u"A", u"y"}})), "Ax>y => Ay\n");
  EXPECT_EQ(describe(repository.findPath({from, from}, {{u"A", u"y"}})), "Ax>y => Ay\n");
  EXPECT_EQ(describe(repository.findPath({from, from}, selection("Ay"))), "Ax>y => Ay\n");
  EXPECT_EQ(repository.combine({{u"A", u"x"}}).at(0), from);
}

TEST(FindPath, SearchLinksTheTargetsOfProcessedBaselinesOnly) {
  TestRepository repository("A1..5");
  repository.path("A1", "A3");
  EXPECT_EQ(repository.callsOf("loadMetamodel"), "A2");
}

class PathCacheTest : public testing::Test {
 protected:
  /// Whether a path that is not empty is answered without any call.
  bool isKept(const std::string& from, const std::string& to) {
    return !repository.path(from, to).empty() && repository.calls.empty();
  }

  TestRepository repository{"S1..5 S5>4 S4>3 S3>2 S2>1 T1..2"};
  const Baselines linked = repository.baselines("S1, S2, S3, S4, S5");
};

TEST_F(PathCacheTest, AnswersTheSameQuestionWithoutAnyCall) {
  EXPECT_FALSE(isKept("S1", "S3"));
  EXPECT_TRUE(isKept("S1", "S3"));
  const std::string found = repository.path("S1", "S3");
  EXPECT_EQ(found, "S1>2 => S2\nS2>3 => S3\n");
  EXPECT_EQ(repository.path("S1", "S3", backward), found) << "whatever direction is asked";
  EXPECT_EQ(repository.path("S1", "S2", backward), "none");
  repository.invalidatePathfindingCache();
  EXPECT_FALSE(isKept("S1", "S3"));
}

TEST_F(PathCacheTest, IsLookedUpBeforeTheTargetTestAndForTheFirstPairInListOrder) {
  const std::string longPath = repository.path("S1", "S5");
  const std::string shortPath = repository.path("S4", "S5");
  repository.path("S1", "S2");
  const std::string pathDown = repository.path("S4", "S3", backward);
  EXPECT_EQ(repository.path("S5, S1", "S5"), longPath);
  EXPECT_EQ(repository.path("S1, S4", "S5"), longPath);
  EXPECT_EQ(repository.path("S4, S1", "S2, S5"), shortPath);
  EXPECT_EQ(repository.path("S4", "S5, S3"), shortPath);
  EXPECT_EQ(repository.path("S4", "S3, S5"), pathDown);
  EXPECT_EQ(repository.path("S5, S2", "S5"), "");
}

TEST_F(PathCacheTest, KeepsTheTargetAskedForAsKeyAndNeitherFailuresNorEmptyPaths) {
  EXPECT_EQ(repository.path("S1 T1", "S2"), "S1>2 => S2 T1\n");
  EXPECT_TRUE(isKept("S1 T1", "S2"));
  EXPECT_FALSE(isKept("S1 T1", "S2 T1")) << "the baseline reached is another key";
  const Lines records = traceOf(4 | 8, [&] {
    for (const char* from : {"S1 T1", "S1 T1", "S5", "S5"}) repository.path(from, "S1");
  });
  for (const std::string& record : records) {
    EXPECT_TRUE(record[0] == '4' && record != "4 Found Path in cache") << record;
  }
}

TEST_F(PathCacheTest, IsEmptiedWhenAMetamodelIsLinkedAlsoInTheMiddleOfASearch) {
  repository.path("S1", "S2");
  repository.baseline("S1");
  EXPECT_TRUE(isKept("S1", "S2")) << "linked before: nothing new";
  repository.baseline("T1");
  EXPECT_FALSE(isKept("S1", "S2"));
  EXPECT_TRUE(isKept("S1", "S2"));
  EXPECT_EQ(repository.path("T1", "S1"), "none");  // links T2
  EXPECT_FALSE(isKept("S1", "S2"));
}

TEST_F(PathCacheTest, StoreRecordsHaveALevelOfTheirOwn) {
  const auto ask = [this] { repository.path("S1", "S3"); };
  Lines stored{"8 Emplace Path to cache:", "8 Baseline {S@1.0.0}", "8 \t-> Baseline {S@2.0.0}",
               "8 \t-> Baseline {S@3.0.0}", "8 END OF PATH"};
  EXPECT_EQ(traceOf(8, ask), stored);
  EXPECT_EQ(traceOf(4 | 8, ask), (Lines{"4 Finding path from one of:", "4 Baseline {S@1.0.0}",
                                        "4 TO one of:", "4 Baseline {S@3.0.0}", "4 End of list",
                                        "4 Direction is Forward", "4 Found Path in cache",
                                        "4 Baseline {S@2.0.0}", "4 Baseline {S@3.0.0}"}));
  repository.invalidatePathfindingCache();
  // While the search below runs, another one finds a new way and stores it. That one stays, and
  // the records are written all the same.
  bool asked = false;
  repository.onCall = [&](const std::string& call) {
    if (call != "findHops S2" || std::exchange(asked, true)) return;
    repository.add("S1>3");
    ask();
  };
  stored.insert(stored.begin(), {"8 Emplace Path to cache:", "8 Baseline {S@1.0.0}",
                                 "8 \t-> Baseline {S@3.0.0}", "8 END OF PATH"});
  EXPECT_EQ(traceOf(8, ask), stored);
  EXPECT_EQ(repository.path("S1", "S3"), "S1>3 => S3\n");

  const Lines records = traceOf(4, [&] { repository.path("S4, S4", "S1"); });
  EXPECT_EQ(std::count(records.begin(), records.end(),
                       "4 Trying unvisited baseline with least weight: Baseline {S@4.0.0}"),
            1);
}

/// The same baseline in a map that was filled in another way.
VersionBaseline refilled(const VersionBaseline& baseline, Random& random) {
  std::vector<std::pair<std::u16string, std::shared_ptr<LinkedMetamodel>>> entries(
      baseline.metamodels.begin(), baseline.metamodels.end());
  std::shuffle(entries.begin(), entries.end(), random);
  VersionBaseline result;
  if (random() % 2 == 0) result.metamodels.rehash(random() % 40);
  result.metamodels.insert(entries.begin(), entries.end());
  return result;
}

/// All that can be told of a path, by the orders of its maps.
std::string everythingOf(const std::vector<BaselineHop>& path) {
  std::ostringstream out;
  for (const auto& [from, to, hops] : path) {
    for (const VersionBaseline& baseline : {from, to}) {
      out << baseline << std::hash<VersionBaseline>()(baseline) << "\n";
      for (const auto& [name, linked] : baseline.metamodels) out << linked.get() << " ";
    }
    for (const auto& [name, hop] : hops) {
      out << fl::i18n::ustring_to_utf8(name) << hop << hop.expensive << "\n";
    }
  }
  return out.str();
}

TEST(PathCache, GivesBackTheVeryPathThatWasReturned) {
  RandomRun run(1000);
  run.ask(randomQuestion, [&](const std::string& text, Random& random) {
    TestQuestion question(text);
    TestRepository& repository = question.repository;
    if (question.sources.empty()) return;
    const auto ask = [&](const VersionBaseline& target) -> Path {
      const VersionBaseline source = refilled(question.sources[0], random);
      try {
        return repository.findPath({source}, {refilled(target, random)}, question.direction);
      } catch (const foundation::core::except::IMsgIDException&) {
        return std::nullopt;
      }
    };
    // All is linked beforehand, so that nothing is forgotten.
    for (const VersionBaseline& target : question.targets) ask(target);
    repository.invalidatePathfindingCache();
    std::vector<std::pair<VersionBaseline, Path>> answers;
    for (const VersionBaseline& target : question.targets) {
      answers.emplace_back(target, ask(target));
    }
    for (const auto& [target, found] : answers) {
      if (!found || found->empty()) continue;
      repository.calls.clear();
      ASSERT_EQ(everythingOf(*ask(target)), everythingOf(*found));
      ASSERT_TRUE(repository.calls.empty()) << "answered from the cache";
      run.count("long paths", found->size() > 2);
    }
  });
  run.expectPercentages({{"long paths", 2}});
}

TEST(Concurrency, CachedQuestionsWhilePathsAreForgotten) {
  TestRepository repository("S1..4");
  const Baselines s = repository.baselines("S1, S2, S3, S4");
  repository.isNoting = false;
  std::atomic<int> asking{2};
  std::atomic<int> wrong{0};
  const auto ask = [&](std::size_t from) {
    for (int i = 0; i < 2000; ++i) {
      const Path path = repository.findPath({s[from]}, {s[3]}, forward);
      if (!path || path->size() != 3 - from) ++wrong;
    }
    --asking;
  };
  std::thread first(ask, 0);
  std::thread second(ask, 1);
  while (asking > 0) {
    repository.invalidatePathfindingCache();
    std::this_thread::yield();
  }
  first.join();
  second.join();
  EXPECT_EQ(wrong, 0);
}

TEST(Concurrency, EverythingAtOnceGivesEveryoneTheSameLists) {
  constexpr int threadCount = 4;
  for (int round = 0; round < 20; ++round) {
    TestRepository repository(
        "C1..3 B1:C[1,3) B2:C[2,4) B1>2 A1:B1 A2:B[1,3) A1>2 D1:A[1,3) D2:A2+C3 D1>2");
    repository.isNoting = false;
    std::vector<std::vector<std::shared_ptr<LinkedMetamodel>>> seen(threadCount);
    std::vector<std::string> paths(threadCount);
    const auto work = [&](int index) {
      const Path path = repository.findPath(selection("A1 B1 C1 D1"), selection("C3 D2"));
      paths[static_cast<std::size_t>(index)] = describe(path);
      repository.invalidatePathfindingCache();
      for (const Metamodel& metamodel : repository.metamodels) {
        const auto& variants = repository.getLinkedMetamodels(metamodel);
        auto& mine = seen[static_cast<std::size_t>(index)];
        mine.insert(mine.end(), variants.begin(), variants.end());
      }
    };
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int index = 0; index < threadCount; ++index) threads.emplace_back(work, index);
    for (std::thread& thread : threads) thread.join();
    for (int index = 1; index < threadCount; ++index) {
      EXPECT_EQ(seen[static_cast<std::size_t>(index)], seen[0]);
      EXPECT_EQ(paths[static_cast<std::size_t>(index)], paths[0]);
    }
    EXPECT_NE(paths[0], "none");
  }
}

}  // namespace
}  // namespace test
