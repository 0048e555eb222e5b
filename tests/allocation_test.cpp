// Lets every single allocation of an operation fail once.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <limits>
#include <new>
#include <random>

#include "support/random_cases.hpp"
#include "support/test_repository.hpp"

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

thread_local std::size_t allocationsLeft = unlimited;

/// Whether this allocation is the one to fail.
bool failsNow() {
  return allocationsLeft != unlimited && allocationsLeft-- == 0;
}

void* allocate(std::size_t size, std::size_t alignment) {
  if (failsNow()) {
    allocationsLeft = unlimited;  // what is done about a failure may allocate
    throw std::bad_alloc();
  }
  const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
  if (void* memory = std::aligned_alloc(alignment, rounded)) return memory;
  throw std::bad_alloc();
}

}  // namespace

// Where it inlines, g++ takes the pairs below for mismatched.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

void* operator new(std::size_t size) {
  return allocate(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  std::free(memory);
}

namespace test {
namespace {

using Ask = std::function<std::string(TestRepository&)>;

/// Asks afresh with the k-th allocation failing, for every k, and then again.
void failAtEachAllocation(const std::string& catalogue, const Ask& ask) {
  TestRepository untroubled(catalogue);
  const std::string expected = ask(untroubled);
  EXPECT_NE(expected, "none");
  for (std::size_t k = 0;; ++k) {
    SCOPED_TRACE("allocation " + std::to_string(k));
    TestRepository repository(catalogue);
    repository.isNoting = false;
    allocationsLeft = k;
    try {
      const std::string answer = ask(repository);
      const bool isOver = allocationsLeft != unlimited;
      allocationsLeft = unlimited;
      EXPECT_EQ(answer, expected);
      ASSERT_TRUE(isOver) << "a failure was swallowed";
      EXPECT_GT(k, 20U);
      return;
    } catch (const std::bad_alloc&) {
      ASSERT_EQ(ask(repository), expected);
    }
  }
}

TEST(Allocation, EveryFailureArrivesAndLeavesTheRepositorySound) {
  failAtEachAllocation("C1..3 B1:C[1,4) D1:C[2,4) A1:B1+D1", [](TestRepository& repository) {
    const auto& variants = repository.getLinkedMetamodels(repository.metamodels.back());
    std::string names;
    for (const auto& variant : variants) names += printed(variant->linkedMetamodels.size());
    return names;
  });
  const auto combine = [](TestRepository& repository) {
    return describe(repository.combine(selection("A1 C1")));
  };
  failAtEachAllocation("B1..3 A1:B[1,4) C1:B[2,4)", combine);
  const auto path = [](const std::string& from, const std::string& to) {
    return [=](TestRepository& repository) {
      return describe(repository.findPath(selection(from), selection(to)));
    };
  };
  failAtEachAllocation("A1..3 B1:A[1,3) B2:A[2,4) B1>2", path("A1 B1", "A3 B2"));
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
void changeOrNot(const Copy& copy, const Change& change, const EntriesOf& entriesOf) {
  auto untroubled = copy();
  const bool isDone = change(untroubled);
  for (std::size_t k = 0;; ++k) {
    SCOPED_TRACE("allocation " + std::to_string(k));
    auto troubled = copy();
    allocationsLeft = k;
    try {
      ASSERT_EQ(change(troubled), isDone);
      const bool isOver = allocationsLeft != unlimited;
      allocationsLeft = unlimited;
      ASSERT_TRUE(isOver) << "a failure was swallowed";
      ASSERT_EQ(inOrder(entriesOf(troubled)), inOrder(entriesOf(untroubled)));
      return;
    } catch (const std::bad_alloc&) {
      ASSERT_EQ(inOrder(entriesOf(troubled)), inOrder(entriesOf(copy())));
      ASSERT_EQ(change(troubled), isDone);
      ASSERT_EQ(inOrder(entriesOf(troubled)), inOrder(entriesOf(untroubled)));
    }
  }
}

TEST(Allocation, EntriesAreAddedTogetherOrNotAtAll) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto make = [](std::size_t number) {
    const std::u16string name = u"n" + std::u16string(1, static_cast<char16_t>(u'A' + number));
    return std::make_shared<LinkedMetamodel>(TestRepository::accessTag(),
                                             Metamodel(name, v(1), {}));
  };
  for (unsigned left = randomCases(300); left > 0 && !testing::Test::HasFailure(); --left) {
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
                [](const auto& held) { return held.metamodels; });
    changeOrNot([&] { return before->clone(); },
                [&](auto& linking) { return linking->linkMetamodel(added); },
                [](const auto& linking) { return linking->linkedMetamodels; });
  }
}

}  // namespace
}  // namespace test
