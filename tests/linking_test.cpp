#include <gtest/gtest.h>

#include <algorithm>

#include "support/path_finder_errors.hpp"
#include "support/small_stack.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

TEST(Linking, OneVariantForEachAdmissibleVersionInOrderKeptOnceLoaded) {
  TestRepository repository("B1.1 B1 B2 A1:B[1,2)");
  const Metamodel a = repository.metamodels.back();
  repository.onCall = [](const std::string& call) {
    if (call == "loadMetamodel A1") throw CallbackFailure();
  };
  EXPECT_THROW(repository.getLinkedMetamodels(a), CallbackFailure);
  EXPECT_EQ(repository.callsOf("loadMetamodel"), "B1.1.0 B1 A1") << "dependencies first";
  repository.onCall = nullptr;
  repository.calls.clear();
  const auto& variants = repository.getLinkedMetamodels(a);
  const auto kept = variants;
  EXPECT_EQ(repository.callsOf("loadMetamodel"), "A1 A1") << "B was kept, A was not";
  EXPECT_EQ(describe(repository.baselines("A1")), "A1 B1.1.0, A1 B1");
  EXPECT_TRUE(std::equal(kept.begin(), kept.end(), repository.loaded.end() - 2));

  repository.calls.clear();
  EXPECT_EQ(&repository.getLinkedMetamodels(a), &variants);
  EXPECT_TRUE(repository.calls.empty());
  repository.createLinkedMetamodels(a);
  EXPECT_EQ(repository.callsOf("loadMetamodel"), "A1 A1");
  EXPECT_EQ(repository.getLinkedMetamodels(a), kept);
}

TEST(Linking, ConflictsAreReportedAndWhatWasLinkedStays) {
  TestRepository repository("D1 D2 B1:D1 C1:D2 A1:B1+C1 A2:B[5,9) E1 E2:A2 F1:E[1,3)");
  EXPECT_THROW(repository.baselines("A1"), Conflict);
  EXPECT_EQ(repository.callsOf("loadMetamodel"), "D1 B1 D2 C1");
  EXPECT_THROW(repository.baselines("A2"), Conflict);
  EXPECT_THROW(repository.baselines("F1"), Conflict) << "though E1 alone would do";
  EXPECT_THROW(repository.getLinkedMetamodels(u"A", v(9)), Conflict);
  repository.calls.clear();
  EXPECT_EQ(describe(repository.baselines("B1")), "B1 D1");
  EXPECT_EQ(repository.callsOf("loadMetamodel"), "");
}

TEST(Linking, CyclesAreNamed) {
  const std::pair<const char*, const char*> cases[] = {
      {"A1:A1", "A@1.0.0 needs A@1.0.0"},
      {"A1:B1+C1 B1 C1:D1 D1:B1+E1 E1:C1", "C@1.0.0 needs D@1.0.0 needs E@1.0.0 needs C@1.0.0"},
      {"A1:B1 B1:C1 C1:D1 D1:E1 E1:F1 F1:F2 F2:F3 F3:F2", "F@2.0.0 needs F@3.0.0 needs F@2.0.0"},
  };
  for (const auto& [content, cycle] : cases) {
    TestRepository repository(content);
    EXPECT_EQ(messageOf<std::logic_error>([&] { repository.baselines("A1"); }),
              std::string("Metamodels depend on one another in a cycle: ") + cycle);
  }
}

TEST(Linking, LongChainsAndManyDependenciesTakeNoStack) {
  constexpr std::size_t count = 2000;
  TestRepository chain("");
  TestRepository fan("");
  std::vector<Dependency> all;
  for (std::size_t i = 0; i < count; ++i) {
    const std::u16string name(1, static_cast<char16_t>(0x4000 + i));
    const Dependency one{name, VersionRange::singleVersion(v(1))};
    chain.metamodels.emplace_back(
        name, v(1), all.empty() ? std::vector<Dependency>() : std::vector{all.back()});
    fan.metamodels.emplace_back(name, v(1), std::vector<Dependency>());
    all.push_back(one);
  }
  fan.metamodels.emplace_back(u"fan", v(1), all);
  for (TestRepository* repository : {&chain, &fan}) {
    repository->isNoting = false;
    runOnSmallStack([&] {
      const Metamodel& root = repository->metamodels.back();
      const auto& variants = repository->getLinkedMetamodels(root);
      EXPECT_EQ(variants.size(), 1U);
      EXPECT_EQ(variants.front()->linkedMetamodels.size(), repository->metamodels.size() - 1);
    });
  }
}

TEST(Linking, WhatLinksAnotherVersionOfItselfCannotBeLinked) {
  TestRepository repository("B2 B1:B2 A1:B1 C1..2 D1:C[1,3)+B[1,3)");
  EXPECT_EQ(repository.getLinkedMetamodels(u"B", v(1)).size(), 1U);
  EXPECT_THROW(repository.baselines("A1"), Conflict);
  EXPECT_EQ(describe(repository.baselines("D1")), "B2 C1 D1, B2 C2 D1");
}

TEST(Linking, SecondDependencyOfANameIsLinkedButNotChosen) {
  TestRepository repository("B1..3 A1:B1+B[2,4) A2:B8+B[1,4)");
  EXPECT_EQ(describe(repository.baselines("A1")), "A1 B1");
  EXPECT_EQ(repository.callsOf("loadMetamodel"), "B1 B2 B3 A1");
  EXPECT_THROW(repository.baselines("A2"), Conflict);
}

TEST(Selections, BaselinesComeInAscendingNameOrder) {
  TestRepository repository("A1:X[1,3) B1:Y[1,4) X1..2 Y1..3");
  const std::string expected =
      "A1 B1 X1 Y1, A1 B1 X1 Y2, A1 B1 X1 Y3, A1 B1 X2 Y1, A1 B1 X2 Y2, A1 B1 X2 Y3";
  Selection selected(64);
  selected.insert({{u"B", v(1)}, {u"A", v(1)}});
  EXPECT_EQ(describe(repository.combine(selected)), expected);
  EXPECT_EQ(describe(repository.combine(selection("A1 B1"))), expected);
  const std::unordered_map<std::u16string, Metamodel> descriptors{{u"B", repository.metamodels[1]},
                                                                  {u"A", repository.metamodels[0]}};
  EXPECT_EQ(describe(repository.combine(descriptors)), expected);
  EXPECT_TRUE(repository.combine(Selection()).empty());
}

TEST(Selections, FirstUnknownVersionInTheSelectionsOwnOrderIsNamed) {
  TestRepository repository("");
  using Arguments = std::vector<resource_core::MessageArgument>;
  const auto argumentsFor = [&](const Selection& selected) {
    try {
      repository.combine(selected);
    } catch (const UnknownVersion& error) {
      return error.GetBaseMsgIDObj().args;
    }
    return Arguments();
  };
  EXPECT_EQ(argumentsFor(selection("A9.8.7")),
            (Arguments{std::string("9.8.7"), std::u16string(u"A")}));
  const Selection several = selection("Aold Bold Cold Dold");
  EXPECT_EQ(argumentsFor(several), (Arguments{std::u16string(u"old"), several.begin()->first}));
}

TEST(Lookup, TextVersionsAreFoundByTheirEquivalentAndTheFirstOfSeveralWins) {
  TestRepository repository("Mspring~1.2 Mautumn M1:N1 M1");
  const auto& metamodels = repository.metamodels;
  EXPECT_TRUE(repository.includes(between(1, 2), metamodels[0]));
  EXPECT_FALSE(repository.includes(between(2, 3), metamodels[0]));
  EXPECT_FALSE(repository.includes(u"autumn", metamodels[0]));
  EXPECT_TRUE(repository.includes(u"autumn", metamodels[1]));
  EXPECT_FALSE(repository.includes(between(0, 9), metamodels[1]));
  EXPECT_EQ(repository.extractSemVer(metamodels[0]), (SemVer{1, 2, 0}));
  EXPECT_FALSE(repository.extractSemVer(metamodels[1]));
  repository.calls.clear();
  EXPECT_EQ(repository.getMetamodel(u"M", u"spring"), metamodels[0]);
  EXPECT_EQ(repository.callsOf("findMetamodels"), "M[1.2.0, 1.2.1)");
  EXPECT_EQ(repository.getMetamodel(u"M", u"autumn"), metamodels[1]);
  EXPECT_EQ(repository.getMetamodel(u"M", v(1)), metamodels[2]);
  EXPECT_FALSE(repository.getMetamodel(u"M", v(2)));
}

/// One character for each direction: stays, goes forward, goes backward, cannot be told.
char symbol(VersionRepository::Direction direction) {
  return "=><?"[direction];
}

TEST(Directions, OfOneMetamodel) {
  TestRepository repository("Mtext Mother M1 M1:N1 Mspring~2 Mtwo~2 M3");
  const std::string expected[] = {"=?>>>>>", "?=>>>>>", "<<==>>>", "<<==>>>",
                                  "<<<<==>", "<<<<==>", "<<<<<<="};
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    const Metamodel& from = repository.metamodels[i];
    std::string found;
    for (const Metamodel& to : repository.metamodels) {
      found += symbol(repository.getDirection(from, to));
    }
    EXPECT_EQ(found, expected[i]) << from;
  }
}

TEST(Directions, OfBaselines) {
  TestRepository repository("A1..2 B1..2 C1..2 Dx Dy");
  const std::tuple<std::string, std::string, char> cases[] = {
      {"A1 B1", "A1 B1", '?'}, {"A1 B1", "C1", '?'},          {"A1 B1", "A2 C2", '>'},
      {"A1 B2", "A2 B1", '?'}, {"A2 B1 C1", "A1 B1 C2", '?'}, {"A1 B2 C2", "A1 B1 C2", '<'},
      {"A1 Dx", "A2 Dy", '>'}};
  for (const auto& [from, to, expected] : cases) {
    const VersionBaseline source = repository.baseline(from);
    const VersionBaseline target = repository.baseline(to);
    VersionBaseline turned;  // the same entries, which are visited the other way round
    for (const auto& entry : source.metamodels) turned.metamodels.insert(entry);
    for (const VersionBaseline* one : {&source, &std::as_const(turned)}) {
      EXPECT_EQ(symbol(repository.computeDirection(*one, target)), expected)
          << from << " to " << to;
    }
  }
}

TEST(Directions, InconsistencyAndNames) {
  using Repository = VersionRepository;
  EXPECT_TRUE(Repository::areDirectionsInconsistent(forward, backward));
  EXPECT_TRUE(Repository::areDirectionsInconsistent(backward, forward));
  EXPECT_FALSE(Repository::areDirectionsInconsistent(Repository::Equal, backward));
  EXPECT_FALSE(Repository::areDirectionsInconsistent(anyDirection, forward));
  std::string names;
  for (int i = 0; i < 5; ++i) {
    names += Repository::getDirectionString(static_cast<Repository::Direction>(i)) + " ";
  }
  EXPECT_EQ(names, "Equal Forward Backward Unknown  ") << "nothing for a fifth value";
}

}  // namespace
}  // namespace test
