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
  const Metamodel others[] = {
      {u"a", v(1), {onB, onC}}, {u"A", u"1.0.0", {onB, onC}}, {u"A", v(1), {onC, onB}},
      {u"A", v(1), {onB}},      {u"A", v(1), {onB, onB}},
  };
  for (const Metamodel& other : others) EXPECT_FALSE(base == other) << other;
}

TEST(Metamodel, HashesNameAndVersionByFormula) {
  const std::hash<Metamodel> hash;
  EXPECT_EQ(hash({u"Foo", SemVer{1, 2, 3}, {}}), mix(mix(0, textHash(u"Foo")), 1002003));
  EXPECT_EQ(hash({u"Foo", u"spring", {}}), mix(mix(0, textHash(u"Foo")), textHash(u"spring")));
  EXPECT_EQ(hash({u"Foo", SemVer{1, 0, 1000}, {}}), hash({u"Foo", SemVer{1, 1, 0}, {}}));
  EXPECT_EQ(hash({u"Foo", v(1), {{u"B", between(1, 2)}}}), hash({u"Foo", v(1), {}}));
  EXPECT_NE(hash({u"Foo", v(1), {}}), hash({u"Foo", u"1.0.0", {}}));
}

TEST(Metamodel, PrintsNameAndVersionOnly) {
  EXPECT_EQ(printed(Metamodel(u"Foo", SemVer{1, 2, 0}, {{u"B", between(1, 2)}})), "Foo@1.2.0");
  EXPECT_EQ(printed(Metamodel(u"\u00c4", u"spring 1", {})), "\xc3\x84@spring 1");
}

TEST(Hop, ComparesWithoutTheExpensiveFlagAndPrints) {
  const Hop hop(u"A", v(1), v(2), false);
  EXPECT_EQ(hop, Hop(u"A", v(1), v(2), true));
  EXPECT_FALSE(hop == Hop(u"B", v(1), v(2), false));
  EXPECT_FALSE(hop == Hop(u"A", v(2), v(2), false));
  EXPECT_FALSE(hop == Hop(u"A", v(1), u"2.0.0", false));
  EXPECT_EQ(printed(Hop(u"A", v(1), u"next", true)), "Hop {A@1.0.0->next}");
}

TEST(LockstepHop, DumpsInAscendingNameOrder) {
  LockstepHop hops;
  EXPECT_EQ(dumpLockstepHop(hops), "Lockstep {}");
  // Code unit order: upper case first, shorter prefix first, surrogate pairs before U+FF5E.
  const std::u16string ascending[] = {u"B", u"a", u"aa", u"\u00e4", u"\U0001F331", u"\uff5e"};
  for (const auto& name : ascending) hops.emplace(name, Hop(name, v(1), v(2), false));
  std::string expected;
  for (const auto& name : ascending) {
    expected += (expected.empty() ? "Lockstep {" : ", ") + printed(hops.at(name));
  }
  EXPECT_EQ(dumpLockstepHop(hops), expected + "}");
  std::ostringstream out;
  EXPECT_EQ(&dumpLockstepHop(hops, out), &out);
  EXPECT_EQ(out.str(), expected + "}");
}

TEST(BaselineHash, FollowsBothFormulas) {
  TestRepository repository;
  repository.add(u"A", SemVer{1, 2, 3});
  repository.add(u"B", u"spring");
  const VersionRepository::KeyHasherVersionBaselineUnordered unordered;
  const std::hash<VersionBaseline> ordered;
  EXPECT_EQ(unordered(VersionBaseline()), 0U);
  EXPECT_EQ(ordered(VersionBaseline()), 0U);

  const std::size_t a = mix(mix(0, textHash(u"A")), 1002003);
  const std::size_t b = mix(mix(0, textHash(u"B")), textHash(u"spring"));
  const VersionBaseline one = repository.baseline({{u"A", SemVer{1, 2, 3}}});
  EXPECT_EQ(unordered(one), a);
  EXPECT_EQ(ordered(one), mix(mix(0, textHash(u"A")), a));

  VersionBaseline two = repository.baseline({{u"A", SemVer{1, 2, 3}}, {u"B", u"spring"}});
  EXPECT_EQ(unordered(two), a ^ b);
  std::size_t chained = 0;
  for (const auto& [name, linked] : two.metamodels) {
    chained = mix(mix(chained, textHash(name)), name == u"A" ? a : b);
  }
  EXPECT_EQ(ordered(two), chained);

  two.metamodels.emplace(u"C", nullptr);
  EXPECT_EQ(unordered(two), a ^ b ^ (textHash(u"C") + 0x9e3779b9));
}

TEST(BaselineHash, UnorderedFormIgnoresInsertionHistory) {
  TestRepository repository;
  std::vector<std::shared_ptr<LinkedMetamodel>> linked;
  for (char16_t name = u'A'; name <= u'Z'; ++name) {
    repository.add(std::u16string(1, name), v(1));
    linked.push_back(repository.only(std::u16string(1, name), v(1)));
  }
  VersionBaseline forwards;
  VersionBaseline backwards;
  for (const auto& metamodel : linked) forwards.tryEmplace(metamodel);
  std::for_each(linked.rbegin(), linked.rend(), [&](const auto& m) { backwards.tryEmplace(m); });
  EXPECT_EQ(forwards, backwards);
  const VersionRepository::KeyHasherVersionBaselineUnordered unordered;
  EXPECT_EQ(unordered(forwards), unordered(backwards));
}

}  // namespace
}  // namespace test
