#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "messages/report_exception.hpp"
#include "platform/in_memory/type_store.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

using foundation::core::except::Exception;
using tarn_evo::messages::ConflictingDependencies;
using tarn_evo::messages::InvalidFamilyVersion;
using Conflict = Exception<ConflictingDependencies, std::exception, void>;
using UnknownVersion = Exception<InvalidFamilyVersion, std::exception, void>;
using Calls = std::vector<std::string>;

std::vector<std::string> linksOf(const std::vector<std::shared_ptr<LinkedMetamodel>>& variants,
                                 const std::u16string& name) {
  std::vector<std::string> result;
  for (const auto& variant : variants) {
    result.push_back(printed(variant->linkedMetamodels.at(name)->version));
  }
  return result;
}

TEST(Linking, OneVariantForEachAdmissibleVersionInOrder) {
  TestRepository repository;
  repository.add(u"B", SemVer{1, 1, 0});
  repository.add(u"B", SemVer{1, 0, 0});
  repository.add(u"B", v(2));
  const Metamodel a = repository.add(u"A", v(1), {{u"B", between(1, 2)}});
  const auto& variants = repository.getLinkedMetamodels(a);
  EXPECT_EQ(linksOf(variants, u"B"), (Calls{"1.1.0", "1.0.0"}));
  EXPECT_EQ(repository.callsOf("loadMetamodel"),
            (Calls{"B@1.1.0", "B@1.0.0", "A@1.0.0", "A@1.0.0"}));

  repository.calls.clear();
  EXPECT_EQ(&repository.getLinkedMetamodels(a), &variants);
  EXPECT_TRUE(repository.calls.empty());
  repository.createLinkedMetamodels(a);
  EXPECT_EQ(&repository.getLinkedMetamodels(a), &variants);
  EXPECT_EQ(variants.size(), 2U) << "the list kept before stays";
}

TEST(Linking, LoadedOnlyAfterItsDependenciesAndBeforeItIsKept) {
  TestRepository repository;
  repository.add(u"B", v(1));
  const Metamodel a = repository.add(u"A", v(1), {{u"B", between(1, 2)}});
  repository.onCall = [](const std::string& call) {
    if (call == "loadMetamodel A@1.0.0") throw CallbackFailure();
  };
  EXPECT_THROW(repository.getLinkedMetamodels(a), CallbackFailure);
  repository.onCall = nullptr;
  repository.calls.clear();
  repository.getLinkedMetamodels(a);
  EXPECT_EQ(repository.callsOf("loadMetamodel"), Calls{"A@1.0.0"}) << "B was kept, A was not";
}

TEST(Linking, ConflictsAreReportedAndWhatWasLinkedStays) {
  TestRepository repository;
  repository.add(u"D", v(1));
  repository.add(u"D", v(2));
  repository.add(u"B", v(1), {{u"D", between(1, 2)}});
  repository.add(u"C", v(1), {{u"D", between(2, 3)}});
  const Metamodel torn = repository.add(u"A", v(1), {{u"B", between(1, 2)}, {u"C", between(1, 2)}});
  const Metamodel unmet = repository.add(u"A", v(2), {{u"B", between(5, 9)}});
  EXPECT_THROW(repository.getLinkedMetamodels(torn), Conflict);
  EXPECT_EQ(repository.callsOf("loadMetamodel"),
            (Calls{"D@1.0.0", "B@1.0.0", "D@2.0.0", "C@1.0.0"}));
  EXPECT_THROW(repository.getLinkedMetamodels(unmet), Conflict);
  EXPECT_THROW(repository.getLinkedMetamodels(u"A", v(9)), Conflict);
  repository.calls.clear();
  repository.only(u"B", v(1));
  EXPECT_TRUE(repository.callsOf("loadMetamodel").empty());
}

TEST(Linking, SecondDependencyOfANameIsLinkedButNotChosen) {
  TestRepository repository;
  repository.addLine(u"B", 3);
  const Metamodel a = repository.add(u"A", v(1), {{u"B", between(1, 2)}, {u"B", between(2, 4)}});
  EXPECT_EQ(linksOf(repository.getLinkedMetamodels(a), u"B"), Calls{"1.0.0"});
  EXPECT_EQ(repository.callsOf("loadMetamodel"),
            (Calls{"B@1.0.0", "B@2.0.0", "B@3.0.0", "A@1.0.0"}));
  const Metamodel none = repository.add(u"A", v(2), {{u"B", between(8, 9)}, {u"B", between(1, 4)}});
  EXPECT_THROW(repository.getLinkedMetamodels(none), Conflict);
}

TEST(Linking, HookMayFillTheNewMetamodel) {
  class Filling : public TestRepository {
    void loadMetamodel(const std::shared_ptr<LinkedMetamodel>& linked) override {
      auto& store = tarn::meta::in_memory::TypeStore::instance();
      linked->registerType(accessTag(), store.addClass(linked->name + u".Root"));
    }
  } repository;
  repository.add(u"A", v(1));
  EXPECT_TRUE(repository.baseline({{u"A", v(1)}}).findClass(u"A.Root"));
  tarn::meta::in_memory::TypeStore::instance().reset();
}

/// Every way to give each dependency, and theirs, one version such that all agree.
class Choices {
 public:
  Choices(TestRepository& repository, std::vector<Metamodel> open)
      : repository_(repository), open_(std::move(open)) {}

  std::set<std::string> all() {
    std::set<std::string> result;
    collect(0, {}, result);
    return result;
  }

 private:
  using Chosen = std::map<std::u16string, VersionId>;

  static std::string text(const Chosen& chosen) {
    std::string result;
    for (const auto& [name, version] : chosen)
      result += printed(Metamodel(name, version, {})) + " ";
    return result;
  }

  // Meets the i-th metamodel's dependencies one after the other; chosen metamodels join the list.
  void collect(std::size_t i, const Chosen& chosen, std::set<std::string>& result) {
    if (i == open_.size()) {
      result.insert(text(chosen));
    } else {
      meet(i, 0, chosen, result);
    }
  }

  void meet(std::size_t i, std::size_t d, const Chosen& chosen, std::set<std::string>& result) {
    if (d == open_[i].dependencies.size()) return collect(i + 1, chosen, result);
    const Dependency dependency = open_[i].dependencies[d];
    std::vector<Metamodel> candidates;
    repository_.findMetamodels(dependency.name, dependency.range, candidates);
    for (const Metamodel& candidate : candidates) {
      const auto held = chosen.find(dependency.name);
      if (held != chosen.end()) {
        if (held->second == candidate.version) meet(i, d + 1, chosen, result);
        continue;
      }
      Chosen extended = chosen;
      extended.emplace(candidate.name, candidate.version);
      open_.push_back(candidate);
      meet(i, d + 1, extended, result);
      open_.pop_back();
    }
  }

  TestRepository& repository_;
  std::vector<Metamodel> open_;
};

std::string closureText(const VersionBaseline& baseline, const std::u16string& without) {
  std::string result;
  for (const auto& [name, linked] :
       std::map(baseline.metamodels.begin(), baseline.metamodels.end())) {
    if (name != without) result += printed<Metamodel>(*linked) + " ";
  }
  return result;
}

TEST(Linking, VariantsAreExactlyTheConsistentChoices) {
  std::size_t variantsSeen = 0;
  std::size_t conflictsSeen = 0;
  for (unsigned seed = 1; seed <= 150; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    TestRepository repository;
    const std::u16string names[] = {u"A", u"B", u"C", u"D", u"E"};
    std::vector<Metamodel> all;
    for (std::size_t i = 0; i < 5; ++i) {
      for (std::uint64_t version = 1; version <= 3; ++version) {
        std::vector<Dependency> dependencies;
        for (std::size_t j = 0; j < i; ++j) {
          if (random() % 2 == 0) continue;
          const std::uint64_t lower = 1 + random() % 3;
          dependencies.push_back({names[j], between(lower, lower + 1 + random() % 2)});
        }
        all.push_back(repository.add(names[i], v(version), dependencies));
      }
    }
    for (const Metamodel& metamodel : all) {
      const std::set<std::string> expected = Choices(repository, {metamodel}).all();
      std::multiset<std::string> found;
      try {
        for (const auto& variant : repository.getLinkedMetamodels(metamodel)) {
          found.insert(closureText(*VersionBaseline::create({variant}), metamodel.name));
        }
        variantsSeen += found.size();
      } catch (const Conflict&) {
        ++conflictsSeen;
        continue;  // of the metamodel itself, or of a candidate that it needs none of
      }
      EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), expected) << metamodel;
    }
  }
  EXPECT_GT(variantsSeen, 1000U);
  EXPECT_GT(conflictsSeen, 100U);
}

TEST(Selections, BaselinesComeInAscendingNameOrder) {
  TestRepository repository;
  repository.addLine(u"X", 2);
  repository.addLine(u"Y", 2);
  repository.add(u"A", v(1), {{u"X", between(1, 3)}});
  repository.add(u"B", v(1), {{u"Y", between(1, 3)}});
  const std::vector<std::string> expected{
      "A@1.0.0 B@1.0.0 X@1.0.0 Y@1.0.0", "A@1.0.0 B@1.0.0 X@1.0.0 Y@2.0.0",
      "A@1.0.0 B@1.0.0 X@2.0.0 Y@1.0.0", "A@1.0.0 B@1.0.0 X@2.0.0 Y@2.0.0"};
  const std::unordered_map<std::u16string, VersionId> forwards{{u"A", v(1)}, {u"B", v(1)}};
  std::unordered_map<std::u16string, VersionId> backwards(64);
  backwards.emplace(u"B", v(1));
  backwards.emplace(u"A", v(1));
  for (const auto& selection : {forwards, backwards}) {
    std::vector<std::string> found;
    for (const auto& baseline : repository.combine(selection)) found.push_back(describe(baseline));
    EXPECT_EQ(found, expected);
  }
  std::unordered_map<std::u16string, Metamodel> descriptors;
  for (const auto* name : {u"B", u"A"}) {
    descriptors.emplace(name, *repository.VersionRepository::getMetamodel(name, v(1)));
  }
  EXPECT_EQ(repository.combine(descriptors), repository.combine(forwards));
  EXPECT_TRUE(repository.combine(std::unordered_map<std::u16string, VersionId>()).empty());
}

TEST(Selections, UnknownVersionIsNamedWithItsArguments) {
  TestRepository repository;
  repository.addLine(u"A", 2);
  const auto argumentsOf = [&](const VersionId& version) {
    try {
      repository.combine({{u"A", version}});
    } catch (const UnknownVersion& error) {
      return error.GetBaseMsgIDObj().args;
    }
    return std::vector<resource_core::MessageArgument>();
  };
  EXPECT_EQ(argumentsOf(SemVer{9, 9, 9}), (std::vector<resource_core::MessageArgument>{
                                              std::string("9.9.9"), std::u16string(u"A")}));
  EXPECT_EQ(argumentsOf(u"spring"), (std::vector<resource_core::MessageArgument>{
                                        std::u16string(u"spring"), std::u16string(u"A")}));
}

TEST(Selections, FirstErrorFollowsTheSelectionsOwnOrder) {
  TestRepository repository;
  const std::unordered_map<std::u16string, VersionId> selection{
      {u"A", v(1)}, {u"B", v(1)}, {u"C", v(1)}, {u"D", v(1)}};
  try {
    repository.combine(selection);
    FAIL() << "no exception";
  } catch (const UnknownVersion& error) {
    EXPECT_EQ(std::get<std::u16string>(error.GetBaseMsgIDObj().args[1]), selection.begin()->first);
  }
}

TEST(Lookup, TextVersionsAreFoundByTheirEquivalent) {
  TestRepository repository;
  const Metamodel spring = repository.add(u"M", u"spring");
  const Metamodel autumn = repository.add(u"M", u"autumn");
  EXPECT_FALSE(repository.includes(between(1, 2), spring));
  EXPECT_TRUE(repository.includes(u"spring", spring));
  EXPECT_FALSE(repository.extractSemVer(spring));
  EXPECT_EQ(repository.getMetamodel(u"M", u"autumn"), autumn);

  repository.addEquivalent(u"M", u"spring", SemVer{1, 2, 0});
  EXPECT_TRUE(repository.includes(between(1, 2), spring));
  EXPECT_FALSE(repository.includes(between(2, 3), spring));
  EXPECT_FALSE(repository.includes(u"autumn", spring));
  EXPECT_EQ(repository.extractSemVer(spring), (SemVer{1, 2, 0}));
  repository.calls.clear();
  EXPECT_EQ(repository.getMetamodel(u"M", u"spring"), spring);
  EXPECT_EQ(repository.callsOf("findMetamodels"), Calls{"M [1.2.0, 1.2.1)"});
}

TEST(Lookup, GetMetamodelTakesTheFirstOfSeveral) {
  TestRepository repository;
  const Metamodel first = repository.add(u"M", v(1), {{u"N", between(1, 2)}});
  repository.add(u"M", v(1));
  EXPECT_EQ(repository.getMetamodel(u"M", v(1)), first);
  EXPECT_FALSE(repository.getMetamodel(u"M", v(2)));
}

TEST(Directions, OfOneMetamodel) {
  TestRepository repository;
  repository.addEquivalent(u"M", u"spring", v(2));
  const Metamodel one(u"M", v(1), {});
  const Metamodel oneOther(u"M", v(1), {{u"N", between(1, 2)}});
  const Metamodel three(u"M", v(3), {});
  const Metamodel spring(u"M", u"spring", {});
  const Metamodel text(u"M", u"text", {});
  const Metamodel otherText(u"M", u"other", {});
  const struct {
    const Metamodel& from;
    const Metamodel& to;
    VersionRepository::Direction there;
    VersionRepository::Direction back;
  } cases[] = {
      {one, one, VersionRepository::Equal, VersionRepository::Equal},
      {one, oneOther, VersionRepository::Equal, VersionRepository::Equal},
      {one, three, VersionRepository::Forward, VersionRepository::Backward},
      {one, spring, VersionRepository::Forward, VersionRepository::Backward},
      {spring, three, VersionRepository::Forward, VersionRepository::Backward},
      {text, one, VersionRepository::Forward, VersionRepository::Backward},
      {text, spring, VersionRepository::Forward, VersionRepository::Backward},
      {text, text, VersionRepository::Equal, VersionRepository::Equal},
      {text, otherText, VersionRepository::Unknown, VersionRepository::Unknown},
  };
  for (const auto& [from, to, there, back] : cases) {
    EXPECT_EQ(repository.getDirection(from, to), there) << from << " " << to;
    EXPECT_EQ(repository.getDirection(to, from), back) << to << " " << from;
  }
}

TEST(Directions, OfBaselines) {
  TestRepository repository;
  for (const auto* name : {u"A", u"B", u"C"}) repository.addLine(name, 2);
  const auto one = repository.baseline({{u"A", v(1)}, {u"B", v(1)}});
  const auto direction = [&](const std::unordered_map<std::u16string, VersionId>& to) {
    return repository.computeDirection(one, repository.baseline(to));
  };
  EXPECT_EQ(direction({{u"A", v(1)}, {u"B", v(1)}}), VersionRepository::Unknown);
  EXPECT_EQ(direction({{u"C", v(1)}}), VersionRepository::Unknown);
  EXPECT_EQ(direction({{u"A", v(2)}, {u"B", v(1)}, {u"C", v(2)}}), VersionRepository::Forward);
  const auto mixed = repository.baseline({{u"A", v(1)}, {u"B", v(2)}});
  EXPECT_EQ(repository.computeDirection(mixed, repository.baseline({{u"A", v(2)}, {u"B", v(1)}})),
            VersionRepository::Unknown);
  EXPECT_EQ(repository.computeDirection(mixed, one), VersionRepository::Backward);
}

TEST(Directions, InconsistencyAndNames) {
  using Direction = VersionRepository::Direction;
  const Direction all[] = {VersionRepository::Equal, VersionRepository::Forward,
                           VersionRepository::Backward, VersionRepository::Unknown};
  for (const Direction a : all) {
    for (const Direction b : all) {
      EXPECT_EQ(VersionRepository::areDirectionsInconsistent(a, b), a + b == 3 && a != 0 && b != 0);
    }
  }
  EXPECT_EQ(VersionRepository::getDirectionString(VersionRepository::Equal), "Equal");
  EXPECT_EQ(VersionRepository::getDirectionString(VersionRepository::Forward), "Forward");
  EXPECT_EQ(VersionRepository::getDirectionString(VersionRepository::Backward), "Backward");
  EXPECT_EQ(VersionRepository::getDirectionString(VersionRepository::Unknown), "Unknown");
  EXPECT_EQ(VersionRepository::getDirectionString(static_cast<Direction>(4)), "");
}

}  // namespace
}  // namespace test
