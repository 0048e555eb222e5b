#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "pathfinder/baseline_combination.hpp"
#include "support/path_finder_errors.hpp"
#include "support/random_run.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

using Linked = std::shared_ptr<LinkedMetamodel>;

/// A linked metamodel, written as "A1", with its links.
Linked make(const std::string& nameAndVersion, const std::vector<Linked>& links = {}) {
  const auto [name, version] = *selection(nameAndVersion).begin();
  auto result =
      std::make_shared<LinkedMetamodel>(TestRepository::accessTag(), Metamodel(name, version, {}));
  for (const Linked& link : links) result->linkMetamodel(link);
  return result;
}

TEST(LinkedMetamodel, LinkingTakesInTheOthersLinksAndKeepsWhatCameBeforeAConflict) {
  const Linked c1 = make("C1");
  const Linked b = make("B1", {c1});
  const Linked a = make("A1");
  EXPECT_TRUE(a->linkMetamodel(b));
  EXPECT_TRUE(a->linkMetamodel(b)) << "the same object again";
  EXPECT_EQ(a->linkedMetamodels.at(u"C"), c1);
  EXPECT_FALSE(a->linkMetamodel(make("B1"))) << "equal content is another object";
  EXPECT_EQ(a->linkedMetamodels.at(u"B"), b);

  const Linked c2 = make("C2");
  const Linked torn = make("A2", {c2});
  EXPECT_FALSE(torn->linkMetamodel(b));
  EXPECT_EQ(torn->linkedMetamodels.at(u"B"), b);
  EXPECT_EQ(torn->linkedMetamodels.at(u"C"), c2);
}

TEST(LinkedMetamodel, FindsItsOwnDescriptorFirstAndPrintsItsLinks) {
  const Linked a = make("A1");
  EXPECT_EQ(printed(*a), "LinkedMetamodel{A@1.0.0}");
  a->linkMetamodel(make("Bspring"));
  EXPECT_EQ(printed(*a), "LinkedMetamodel{A@1.0.0 ->B@spring}");
  a->linkMetamodel(make("A7"));
  EXPECT_EQ(a->findMetamodel(u"A")->version, VersionId(v(1)));
  EXPECT_EQ(a->findMetamodel(u"B")->version, VersionId(u"spring"));
  EXPECT_FALSE(a->findMetamodel(u"C"));
}

TEST(VersionBaseline, TryEmplaceInsertsAllOrNothing) {
  const Linked c1 = make("C1");
  const Linked a = make("A1", {c1});
  VersionBaseline baseline;
  EXPECT_TRUE(baseline.tryEmplace(a));
  EXPECT_TRUE(baseline.tryEmplace(a));
  EXPECT_TRUE(baseline.tryEmplace(c1));
  EXPECT_FALSE(baseline.tryEmplace(make("A1")));
  for (const char* link : {"C2", "C1"}) {
    EXPECT_FALSE(baseline.tryEmplace(make("B1", {make("D1"), make(link), make("E1")})));
  }
  EXPECT_EQ(describe(baseline), "A1 C1");
}

TEST(VersionBaseline, CreateWantsAllToAgree) {
  const Linked c1 = make("C1");
  const Linked a = make("A1", {c1});
  EXPECT_EQ(describe(*VersionBaseline::create({})), "");
  EXPECT_EQ(describe(*VersionBaseline::create({a, make("B1", {c1})})), "A1 B1 C1");
  EXPECT_FALSE(VersionBaseline::create({a, make("A2")}));
  EXPECT_FALSE(VersionBaseline::create({a, make("B1", {make("C1")})}));
}

TEST(VersionBaseline, IncludesAndEqualsByIdentity) {
  const Linked a = make("A1");
  const Linked b = make("B1");
  const VersionBaseline ab = *VersionBaseline::create({a, b});
  VersionBaseline justA = *VersionBaseline::create({a});
  EXPECT_TRUE(ab.includes(justA));
  EXPECT_FALSE(justA.includes(ab));
  EXPECT_FALSE(ab == justA);
  EXPECT_EQ(ab, *VersionBaseline::create({b, a}));
  EXPECT_FALSE(ab.includes(*VersionBaseline::create({make("A1")})));
  EXPECT_EQ(printed(justA), "Baseline {A@1.0.0}");
  EXPECT_EQ(printed(ab), ab.metamodels.begin()->first == u"A" ? "Baseline {A@1.0.0, B@1.0.0}"
                                                              : "Baseline {B@1.0.0, A@1.0.0}");
  justA.metamodels.emplace(u"Z", nullptr);
  EXPECT_TRUE(ab.includes(justA));
}

TEST(Combination, IsInMixedRadixOrderOfTheMapAndInCandidateOrder) {
  using Alternatives = std::unordered_map<std::u16string, std::vector<Linked>>;
  const Linked a1 = make("A1");
  const Linked b1 = make("B1");
  const Linked b2 = make("B2");
  const Linked linking = make("A2", {b2});
  const Linked d1 = make("D1");
  const Linked b3 = make("B3");
  const Linked linkedBefore = make("A3", {b3, d1});
  b3->linkMetamodel(make("C1"));
  const std::tuple<Alternatives, std::string, std::string> cases[] = {
      // What is expected when A is visited first, and when B is.
      {{{u"A", {}}, {u"B", {b1}}}, "", ""},
      {{{u"A", {make("A2"), a1}}, {u"B", {b2, b1}}},
       "A2 B2, A2 B1, A1 B2, A1 B1",
       "A2 B2, A1 B2, A2 B1, A1 B1"},
      // What a link brings in must be a candidate, and counts once.
      {{{u"A", {a1, linking}}, {u"B", {b1}}}, "A1 B1", "A1 B1"},
      {{{u"A", {linking}}, {u"B", {b2, b1, b2}}}, "A2 B2", "A2 B2, A2 B2"},
      // A link that links more than is linked with it stands for none of the others.
      {{{u"A", {linkedBefore}}, {u"B", {b3}}}, "A3 B3 D1", "A3 B3 C1 D1"}};
  for (const auto& [alternatives, fromA, fromB] : cases) {
    EXPECT_EQ(describe(VersionBaseline::combine(alternatives)),
              alternatives.begin()->first == u"A" ? fromA : fromB);
  }
}

TEST(Combination, OfOneThatLinksAnotherVersionOfItselfHoldsNobodyWhoLinksThatToo) {
  TestRepository repository("A1 M1 N1:M1 M2:N1 P1:N1");
  EXPECT_EQ(describe(repository.combine(selection("A1 M2"))), "A1 M2 N1");
  EXPECT_EQ(describe(repository.combine(selection("A1 M2 P1"))), "");
  EXPECT_EQ(describe(repository.combine(selection("A1 M1 P1"))), "A1 M1 N1 P1");
}

/// Three versions of each of A to F. Any may depend on some that stand before it in a random order,
/// of its own name as well.
std::string randomContent(Random& random) {
  std::vector<std::string> versions;
  for (char name = 'A'; name <= 'F'; ++name) {
    for (char number = '1'; number <= '3'; ++number) versions.push_back({name, number});
  }
  std::shuffle(versions.begin(), versions.end(), random);
  std::string content;
  for (std::size_t i = 0; i < versions.size(); ++i) {
    content += " " + versions[i];
    char separator = ':';
    for (std::size_t left = i == 0 ? 0 : random() % 3; left > 0; --left) {
      content += separator + versions[random() % i];
      separator = '+';
    }
  }
  return content;
}

TEST(Combination, OfWhatIsLinkedIsTheSameAsLinkByLink) {
  RandomRun run(20'000);
  run.ask(randomContent, [&](const std::string& content, Random& random) {
    TestRepository repository(content);
    std::map<std::u16string, std::vector<Linked>> held;
    for (const Metamodel& metamodel : repository.metamodels) {
      if (!random.chance(25)) continue;
      try {
        const auto& linked = repository.getLinkedMetamodels(metamodel);
        held[metamodel.name].insert(held[metamodel.name].end(), linked.begin(), linked.end());
      } catch (const Conflict&) {
        // Never held.
      }
    }
    std::vector<Alternatives> alternatives;
    alternatives.reserve(held.size());
    for (const auto& [name, candidates] : held) alternatives.push_back({&name, &candidates});
    const auto expected = combineInOrder(alternatives, Links::Any);
    EXPECT_EQ(combineInOrder(alternatives, Links::Closed), expected);
    run.count("combined", !expected.empty());
  });
  run.expectPercentages({{"combined", 13}});
}

}  // namespace
}  // namespace test
