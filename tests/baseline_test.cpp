#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "pathfinder/linking/baseline_combination.hpp"
#include "pathfinder/linking/selection_combination.hpp"
#include "support/engine_question.hpp"
#include "support/path_finder_errors.hpp"
#include "support/random_question.hpp"
#include "support/test_question.hpp"

namespace test {
namespace {

using namespace std::string_literals;
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

TEST(VersionBaseline, ANullEntryHoldsNothingAndKeepsItsName) {
  const Linked a = make("A1");
  VersionBaseline baseline;
  baseline.metamodels[u"Z"];
  EXPECT_EQ(printed(baseline), "Baseline {Z}");
  EXPECT_NE(std::hash<VersionBaseline>()(baseline), std::hash<VersionBaseline>()({}));
  EXPECT_FALSE(baseline.findType(u"a.Type"));
  EXPECT_FALSE(baseline.findClass(u"a.Type"));
  EXPECT_TRUE(baseline.fetchSubclasses(tarn::meta::Type()).empty());
  EXPECT_TRUE(VersionBaseline().includes(baseline));
  EXPECT_FALSE(VersionBaseline() == baseline);
  EXPECT_TRUE(baseline.tryEmplace(a));
  for (const Linked& taken : {make("Z1"), make("B1", {make("Z1")})}) {
    EXPECT_FALSE(baseline.admits(taken) || baseline.tryEmplace(taken));
  }

  const Linked holder = make("B1", {a});
  holder->linkedMetamodels[u"Z"];
  EXPECT_FALSE(holder->findType(u"a.Type") || holder->findMetamodel(u"Z"));
  EXPECT_NE(printed(*holder).find(" ->Z"), std::string::npos);
  EXPECT_EQ(describe(*VersionBaseline::create({holder})), "A1 B1");
  EXPECT_EQ(describe(VersionBaseline::combine({{u"B", {holder}}})), "A1 B1");
  const Linked user = make("C1", {a});
  EXPECT_TRUE(user->linkMetamodel(holder));
  EXPECT_FALSE(user->linkedMetamodels.contains(u"Z"));
}

TEST(VersionBaseline, ANullPointerForALinkedMetamodelIsRefusedWhereItWouldBeHeld) {
  const Linked a = make("A1");
  VersionBaseline baseline = *VersionBaseline::create({a});
  EXPECT_THROW(VersionBaseline::create({a, nullptr}), std::invalid_argument);
  EXPECT_THROW(baseline.tryEmplace(nullptr), std::invalid_argument);
  EXPECT_THROW(baseline.admits(nullptr), std::invalid_argument);
  EXPECT_THROW(a->linkMetamodel(nullptr), std::invalid_argument);
  EXPECT_EQ(describe(baseline), "A1");
  const Linked b = make("B1");
  const std::u16string first = u"A";
  const std::u16string second = u"n\0ame"s;
  const std::vector<Linked> linking{make("A2", {b})};
  linking[0]->linkedMetamodels[second] = b;
  using Candidates = std::vector<Linked>;
  for (const Candidates& candidates : {Candidates{nullptr}, Candidates{nullptr, b}}) {
    const auto found = combineInOrder({{&first, &linking}, {&second, &candidates}}, Links::Any);
    EXPECT_EQ(found.size(), candidates.size() - 1) << "only compared";
    const std::string message = messageOf<std::invalid_argument>([&] {
      VersionBaseline::combine({{second, candidates}});
    });
    EXPECT_NE(message.find("\"n\u2400ame\""), std::string::npos) << message;
  }
}

TEST(VersionRepository, PassesOverWhatHoldsNothing) {
  const std::string names = "EFGHIJKLMNO";
  for (const std::size_t beside : {std::size_t{0}, names.size()}) {  // small, and large
    std::string content = "A1..2 B1 B2:A[2,4) B1>2 Z1";
    std::string selected = "A1 B1";
    for (const char name : names.substr(0, beside)) {
      content += std::string{' ', name} + "1..2";
      selected += std::string{' ', name} + "1";
    }
    TestRepository repository(content);
    VersionBaseline from = repository.baseline(selected);
    VersionBaseline to = repository.baseline("A2");
    const LockstepHop hops{{u"A", Hop(u"A", v(1), v(2), false)}};
    const auto answers = [&] {
      std::string result = describe(repository.findPath(from, to));
      result += describe(repository.findPath({from, from}, selection("A2")));
      result += describe(repository.createTargetBaseline(from, hops));
      result += VersionRepository::getDirectionString(repository.computeDirection(from, to));
      return beside == 0 ? result + describe(repository.getStepsFrom(from, forward)) : result;
    };
    const std::string expected = answers();
    from.metamodels[u"Z"];
    to.metamodels[u"Y"];
    to.metamodels[u"Z"];
    EXPECT_EQ(answers(), expected);
    EXPECT_EQ(repository.findPath(from, to)->front().from, from);
    to.metamodels[u"B"];
    if (beside == 0) {
      EXPECT_FALSE(repository.findPath(from, to)) << "what is held meets no null entry";
    }
  }
}

TEST(VersionRepository, RefusesWhatIsLoadedWithALinkToNothing) {
  TestRepository repository("A1:B1 B1");
  repository.onCall = [&](const std::string& call) {
    if (call == "loadMetamodel A1") repository.loaded.back()->linkedMetamodels[u"lost"];
  };
  EXPECT_EQ(messageOf<std::logic_error>([&] { repository.baselines("A1"); }),
            "Loading A@1.0.0 has left a null pointer among its links, under \"lost\".");
  EXPECT_EQ(describe(repository.baselines("B1")), "B1");
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

/// Three versions of each of A to F, or one of each of a few to many names. Any may depend on some
/// that stand before it in a random order, of its own name as well.
std::string randomContent(Random& random) {
  std::vector<std::string> versions;
  const bool isFlat = random() % 8 == 0;
  const char lastName = isFlat ? static_cast<char>('A' + random() % 26) : 'F';
  const char lastNumber = isFlat ? '1' : '3';
  for (char name = 'A'; name <= lastName; ++name) {
    for (char number = '1'; number <= lastNumber; ++number) versions.push_back({name, number});
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

/// Combination as it is defined: name by name, with `create` and `tryEmplace` alone.
std::vector<VersionBaseline> combinePlainly(const std::vector<Alternatives>& alternatives) {
  std::vector<VersionBaseline> partial;
  for (const auto& [name, candidates] : alternatives) {
    std::vector<VersionBaseline> next;
    if (&name == &alternatives.front().name) {
      for (const Linked& candidate : *candidates) {
        if (const auto alone = VersionBaseline::create({candidate})) next.push_back(*alone);
      }
    }
    for (const VersionBaseline& baseline : partial) {
      const auto held = baseline.metamodels.find(*name);
      const bool isHeld = held != baseline.metamodels.end();
      if (isHeld && std::count(candidates->begin(), candidates->end(), held->second) != 0) {
        next.push_back(baseline);
      }
      for (const Linked& candidate : *candidates) {
        VersionBaseline extended = baseline;
        if (!isHeld && extended.tryEmplace(candidate)) next.push_back(extended);
      }
    }
    partial = std::move(next);
  }
  return partial;
}

/// The text and the hash of each, which depend on how its map was filled.
std::string everythingOf(const std::vector<VersionBaseline>& baselines) {
  std::ostringstream out;
  for (const VersionBaseline& baseline : baselines) {
    out << baseline << " " << std::hash<VersionBaseline>()(baseline) << "\n";
  }
  return out.str();
}

TEST(Combination, OfSeveralSelectionsInTurnIsThatOfEachAlone) {
  RandomRun run(500);
  run.ask(randomQuestion, [&](const std::string& text, Random& random) {
    TestRepository repository(QuestionText(text).catalogue);
    std::vector<Selection> selections(4);
    for (Selection& selection : selections) {
      for (const Metamodel& metamodel : repository.metamodels) {
        if (random.chance(35)) selection.emplace(metamodel.name, metamodel.version);
      }
    }
    SelectionCombination combination(accessTo(repository), 4 * repository.metamodels.size());
    try {
      for (const Selection& selection : selections) {
        const auto expected = everythingOf(repository.combine(selection));
        EXPECT_EQ(everythingOf(combination.combine(selection)), expected);
        run.count("several baselines", repository.combine(selection).size() > 1);
      }
    } catch (const Conflict&) {
      // A version that cannot be linked.
    }
  });
  run.expectPercentages({{"several baselines", 5}});
}

TEST(Combination, OfWhatIsLinkedIsTheSameAsOneByOne) {
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
    const auto expected = combinePlainly(alternatives);
    for (const Links links : {Links::Any, Links::Closed}) {
      const auto found = combineInOrder(alternatives, links);
      EXPECT_EQ(found, expected);
      EXPECT_EQ(everythingOf(found), everythingOf(expected));
    }
    run.count("combined", !expected.empty());
  });
  run.expectPercentages({{"combined", 13}});
}

}  // namespace
}  // namespace test
