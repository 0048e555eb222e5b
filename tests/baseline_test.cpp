#include <gtest/gtest.h>

#include "support/test_repository.hpp"

namespace test {
namespace {

std::shared_ptr<LinkedMetamodel> make(
    const std::u16string& name, std::uint64_t version,
    const std::vector<std::shared_ptr<LinkedMetamodel>>& links = {}) {
  auto result = std::make_shared<LinkedMetamodel>(TestRepository::accessTag(),
                                                  Metamodel(name, v(version), {}));
  for (const auto& link : links) result->linkMetamodel(link);
  return result;
}

using Candidates = std::vector<std::shared_ptr<LinkedMetamodel>>;

std::vector<std::string> describeAll(const std::vector<VersionBaseline>& baselines) {
  std::vector<std::string> result;
  for (const VersionBaseline& baseline : baselines) result.push_back(describe(baseline));
  return result;
}

TEST(VersionBaseline, TryEmplaceInsertsAllOrNothing) {
  const auto c1 = make(u"C", 1);
  const auto c2 = make(u"C", 2);
  const auto a = make(u"A", 1, {c1});
  const auto b = make(u"B", 1, {make(u"D", 1), c2});
  VersionBaseline baseline;
  EXPECT_TRUE(baseline.tryEmplace(a));
  EXPECT_EQ(describe(baseline), "A@1.0.0 C@1.0.0");
  EXPECT_TRUE(baseline.tryEmplace(a));
  EXPECT_TRUE(baseline.tryEmplace(c1));
  EXPECT_FALSE(baseline.tryEmplace(make(u"A", 1)));
  EXPECT_FALSE(baseline.tryEmplace(b));
  EXPECT_EQ(describe(baseline), "A@1.0.0 C@1.0.0");
}

TEST(VersionBaseline, CreateWantsAllToAgree) {
  const auto c1 = make(u"C", 1);
  const auto a = make(u"A", 1, {c1});
  EXPECT_EQ(describe(*VersionBaseline::create({})), "");
  EXPECT_EQ(describe(*VersionBaseline::create({a, make(u"B", 1, {c1})})),
            "A@1.0.0 B@1.0.0 C@1.0.0");
  EXPECT_FALSE(VersionBaseline::create({a, make(u"A", 2)}));
  EXPECT_FALSE(VersionBaseline::create({a, make(u"B", 1, {make(u"C", 1)})}));
}

TEST(VersionBaseline, IncludesAndEqualsByIdentity) {
  const auto a = make(u"A", 1);
  const auto b = make(u"B", 1);
  const VersionBaseline ab = *VersionBaseline::create({a, b});
  const VersionBaseline justA = *VersionBaseline::create({a});
  EXPECT_TRUE(ab.includes(justA));
  EXPECT_FALSE(justA.includes(ab));
  EXPECT_TRUE(justA.includes({}));
  EXPECT_FALSE(ab == justA);
  EXPECT_EQ(ab, *VersionBaseline::create({b, a}));
  EXPECT_FALSE(ab.includes(*VersionBaseline::create({make(u"A", 1)})));
  VersionBaseline withNull = justA;
  withNull.metamodels.emplace(u"Z", nullptr);
  EXPECT_TRUE(ab.includes(withNull));
  EXPECT_EQ(printed(justA), "Baseline {A@1.0.0}");
  EXPECT_EQ(printed(VersionBaseline()), "Baseline {}");
  std::string inMapOrder;
  for (const auto& [name, linked] : ab.metamodels) {
    inMapOrder += (inMapOrder.empty() ? "" : ", ") + printed<Metamodel>(*linked);
  }
  EXPECT_EQ(printed(ab), "Baseline {" + inMapOrder + "}");
}

TEST(Combination, NeedsACandidateForEveryName) {
  EXPECT_TRUE(VersionBaseline::combine({}).empty());
  EXPECT_TRUE(VersionBaseline::combine({{u"A", {make(u"A", 1)}}, {u"B", {}}}).empty());
  EXPECT_TRUE(VersionBaseline::combine({{u"A", {}}, {u"B", {make(u"B", 1)}}}).empty());
}

TEST(Combination, OneNameGivesItsCandidatesInOrder) {
  const auto a2 = make(u"A", 2, {make(u"B", 1)});
  const Candidates candidates{make(u"A", 3), make(u"A", 1), a2, a2};
  EXPECT_EQ(describeAll(VersionBaseline::combine({{u"A", candidates}})),
            (std::vector<std::string>{"A@3.0.0", "A@1.0.0", "A@2.0.0 B@1.0.0", "A@2.0.0 B@1.0.0"}));
}

TEST(Combination, FirstVisitedNameIsTheMostSignificantDigit) {
  const std::unordered_map<std::u16string, Candidates> alternatives{
      {u"A", {make(u"A", 1), make(u"A", 2)}}, {u"B", {make(u"B", 1), make(u"B", 2)}}};
  const std::u16string first = alternatives.begin()->first;
  const std::u16string second = std::next(alternatives.begin())->first;
  std::vector<VersionBaseline> expected;
  for (const auto& most : alternatives.at(first)) {
    for (const auto& least : alternatives.at(second)) {
      expected.push_back(*VersionBaseline::create({most, least}));
    }
  }
  EXPECT_EQ(VersionBaseline::combine(alternatives), expected);
}

TEST(Combination, WhatALinkBringsInMustBeACandidate) {
  const auto b1 = make(u"B", 1);
  const auto b2 = make(u"B", 2);
  const auto a1 = make(u"A", 1);
  const auto a2 = make(u"A", 2, {b2});
  EXPECT_EQ(describeAll(VersionBaseline::combine({{u"A", {a1, a2}}, {u"B", {b1}}})),
            std::vector<std::string>{"A@1.0.0 B@1.0.0"});
  const auto both = describeAll(VersionBaseline::combine({{u"A", {a2}}, {u"B", {b2, b1, b2}}}));
  // Once if A is visited first (one copy of what is there), twice if B's two equal candidates come
  // first.
  for (const std::string& text : both) EXPECT_EQ(text, "A@2.0.0 B@2.0.0");
  EXPECT_TRUE(both.size() == 1 || both.size() == 2);
}

}  // namespace
}  // namespace test
