// Lets every single allocation of an operation fail, and all after it.
#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "support/failing_allocations.hpp"
#include "support/random_run.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

using Ask = std::function<std::string(TestRepository&)>;

/// Asks afresh with the k-th allocation failing, or all from there on, for every k, and then again.
void failAtEachAllocation(const std::string& catalogue, const Ask& ask, bool persists) {
  TestRepository untroubled(catalogue);
  const std::string expected = ask(untroubled);
  EXPECT_NE(expected, "none");
  for (std::size_t k = 0;; ++k) {
    SCOPED_TRACE("allocation " + std::to_string(k) + (persists ? " and all after it" : ""));
    TestRepository repository(catalogue);
    repository.isNoting = false;
    FailingAllocations failing(k, persists);
    try {
      const std::string answer = ask(repository);
      failing.end();
      EXPECT_EQ(answer, expected);
      ASSERT_FALSE(failing.hasFailed()) << "a failure was swallowed";
      EXPECT_GT(k, 20U);
      return;
    } catch (const std::bad_alloc&) {
      failing.end();
      ASSERT_EQ(ask(repository), expected);
    }
  }
}

void failAtEachAllocation(const std::string& catalogue, const Ask& ask) {
  for (const bool persists : {false, true}) failAtEachAllocation(catalogue, ask, persists);
}

TEST(Allocation, EveryFailureArrivesAndLeavesTheRepositorySound) {
  failAtEachAllocation("C1..3 B1:C[1,4) D1:C[2,4) A1:B1+D1", [](TestRepository& repository) {
    const auto& variants = repository.getLinkedMetamodels(repository.metamodels.back());
    std::string names;
    for (const auto& variant : variants) names += printed(variant->linkedMetamodels.size());
    return names;
  });
  const auto combine = [selected = selection("A1 C1")](TestRepository& repository) {
    return describe(repository.combine(selected));
  };
  failAtEachAllocation("B1..3 A1:B[1,4) C1:B[2,4)", combine);
  const auto path = [](const std::string& from, const std::string& to) {
    return [from = selection(from), to = selection(to)](TestRepository& repository) {
      return describe(repository.findPath(from, to));
    };
  };
  failAtEachAllocation("A1..3 B1:A[1,3) B2:A[2,4) B1>2", path("A1 B1", "A3 B2"));
  // Texts that take memory of their own.
  const std::string text = "a-version-that-is-named-rather-than-numbered";
  failAtEachAllocation("A1 A" + text + "~2 B1:A1 B2:A" + text + " A1>" + text + " B1>2",
                       path("A1 B1", "A" + text + " B2"));
  // More combinations than are tried one by one.
  failAtEachAllocation(
      "A1..2 B1..3 C1..2 D1..2 E1..2 F1..2 G1..2 H1..2 I1..2 J1..2 K1:A1 K2:A2+L1 K1>2 L1",
      path("A1 B1 C1 D1 E1 F1 G1 H1 I1 J1 K1", "A2 B3 C2 D2 E2 F2 G2 H2 I2 J2 K2"));
}

using Linked = std::shared_ptr<LinkedMetamodel>;
using Entries = std::unordered_map<std::u16string, Linked>;

/// Entries in their order, which decides on texts and hashes.
std::vector<Entries::value_type> inOrder(const Entries& entries) {
  return {entries.begin(), entries.end()};
}

/// Changes copies of something that has entries, with the k-th allocation failing, for every k.
/// `change` tells whether it was done.
template <class Copy, class Change, class EntriesOf>
void changeOrNot(const Copy& copy, const Change& change, const EntriesOf& entriesOf,
                 bool persists) {
  auto untroubled = copy();
  const bool isDone = change(untroubled);
  for (std::size_t k = 0;; ++k) {
    SCOPED_TRACE("allocation " + std::to_string(k));
    auto troubled = copy();
    FailingAllocations failing(k, persists);
    try {
      const bool isDoneNow = change(troubled);
      failing.end();
      ASSERT_EQ(isDoneNow, isDone);
      ASSERT_FALSE(failing.hasFailed()) << "a failure was swallowed";
      ASSERT_EQ(inOrder(entriesOf(troubled)), inOrder(entriesOf(untroubled)));
      return;
    } catch (const std::bad_alloc&) {
      failing.end();
      ASSERT_EQ(inOrder(entriesOf(troubled)), inOrder(entriesOf(copy())));
      ASSERT_EQ(change(troubled), isDone);
      ASSERT_EQ(inOrder(entriesOf(troubled)), inOrder(entriesOf(untroubled)));
    }
  }
}

TEST(Allocation, EntriesAreAddedTogetherOrNotAtAll) {
  const RandomRun run(300);
  Random random(run.seed());
  const auto make = [](std::size_t number) {
    const std::u16string name = u"n" + std::u16string(1, static_cast<char16_t>(u'A' + number));
    return std::make_shared<LinkedMetamodel>(TestRepository::accessTag(),
                                             Metamodel(name, v(1), {}));
  };
  for (std::size_t left = run.cases(); left > 0 && !HasFailure(); --left) {
    const bool persists = random.chance(50);
    const Linked added = make(0);
    const Linked before = make(0);
    VersionBaseline baseline;
    for (std::size_t number = 1, end = 1 + random() % 40; number < end; ++number) {
      const Linked one = make(number);
      if (random() % 3 != 0) baseline.tryEmplace(one), before->linkMetamodel(one);
      // Now and then, another one of the name.
      if (random() % 2 == 0) added->linkMetamodel(random() % 60 == 0 ? make(number) : one);
    }
    changeOrNot([&] { return baseline; }, [&](auto& held) { return held.tryEmplace(added); },
                [](const auto& held) { return held.metamodels; }, persists);
    changeOrNot([&] { return before->clone(); },
                [&](auto& linking) { return linking->linkMetamodel(added); },
                [](const auto& linking) { return linking->linkedMetamodels; }, persists);
  }
}

}  // namespace
}  // namespace test
