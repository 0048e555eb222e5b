#include <gtest/gtest.h>

#include "pathfinder/hop.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

/// The hash-combine step, written out once more.
std::size_t mix(std::size_t seed, std::size_t value) {
  return seed ^ (value + 0x9e3779b9 + (seed << 6) + (seed >> 2));
}

std::size_t textHash(const std::u16string& text) {
  return std::hash<std::u16string>()(text);
}

TEST(Metamodel, EqualityLooksAtEverythingInOrder) {
  const Dependency onB(u"B", between(1, 2));
  const Dependency onC(u"C", u"spring");
  const Metamodel base(u"A", v(1), {onB, onC});
  EXPECT_EQ(base, Metamodel(u"A", v(1), {onB, onC}));
  const Metamodel others[] = {{u"a", v(1), {onB, onC}}, {u"A", u"1.0.0", {onB, onC}},
                              {u"A", v(1), {onC, onB}}, {u"A", v(1), {onB}},
                              {u"A", v(1), {onB, onB}}, {u"A", v(1), {onB, {u"C", u"autumn"}}}};
  for (const Metamodel& other : others) EXPECT_FALSE(base == other) << other;
  EXPECT_EQ(printed(base), "A@1.0.0");
  EXPECT_EQ(printed(Metamodel(u"\u00c4", u"spring 1", {})), "\xc3\x84@spring 1");
}

TEST(Hop, ComparesWithoutTheExpensiveFlagAndPrints) {
  const Hop hop(u"A", v(1), u"next", false);
  EXPECT_EQ(hop, Hop(u"A", v(1), u"next", true));
  EXPECT_FALSE(hop == Hop(u"B", v(1), u"next", false));
  EXPECT_FALSE(hop == Hop(u"A", v(2), u"next", false));
  EXPECT_FALSE(hop == Hop(u"A", v(1), v(2), false));
  EXPECT_EQ(printed(hop), "Hop {A@1.0.0->next}");
}

TEST(LockstepHop, DumpsInAscendingNameOrder) {
  LockstepHop hops;
  EXPECT_EQ(dumpLockstepHop(hops), "Lockstep {}");
  // Code unit order: upper case first, shorter prefix first, surrogate pairs before U+FF5E.
  std::string expected;
  for (const char16_t* name : {u"B", u"a", u"aa", u"\u00e4", u"\U0001F331", u"\uff5e"}) {
    const Hop& hop = hops.emplace(name, Hop(name, v(1), v(2), false)).first->second;
    expected += (expected.empty() ? "Lockstep {" : ", ") + printed(hop);
  }
  EXPECT_EQ(dumpLockstepHop(hops), expected + "}");
  std::ostringstream out;
  EXPECT_EQ(&dumpLockstepHop(hops, out), &out);
}

TEST(Hashes, FollowTheirFormulas) {
  TestRepository repository("A1.2.3 Bspring:A[1,9)");
  const VersionRepository::KeyHasherVersionBaselineUnordered unordered;
  const std::hash<VersionBaseline> ordered;
  EXPECT_EQ(unordered(VersionBaseline()), 0U);
  EXPECT_EQ(ordered(VersionBaseline()), 0U);

  const std::size_t a = mix(mix(0, textHash(u"A")), 1002003);
  const std::size_t b = mix(mix(0, textHash(u"B")), textHash(u"spring"));
  EXPECT_EQ(std::hash<Metamodel>()(repository.metamodels[0]), a);
  EXPECT_EQ(std::hash<Metamodel>()(repository.metamodels[1]), b) << "dependencies do not enter";
  VersionBaseline two = repository.baseline("A1.2.3 Bspring");
  EXPECT_EQ(unordered(two), a ^ b);
  std::size_t chained = 0;
  for (const auto& [name, linked] : two.metamodels) {
    chained = mix(mix(chained, textHash(name)), name == u"A" ? a : b);
  }
  EXPECT_EQ(ordered(two), chained);
  two.metamodels.emplace(u"C", nullptr);
  EXPECT_EQ(unordered(two), a ^ b ^ (textHash(u"C") + 0x9e3779b9));
}

}  // namespace
}  // namespace test
