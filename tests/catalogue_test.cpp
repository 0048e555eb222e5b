#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/json_catalogue.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

Catalogue read(const std::string& json) {
  std::istringstream in(json);
  return readJsonCatalogue(in);
}

/// What the reader says of a text that it refuses.
std::string errorOf(const std::string& json) {
  try {
    read(json);
  } catch (const CatalogueError& error) {
    return error.what();
  }
  return "no error";
}

std::string metamodel(const std::string& name, const std::string& version,
                      const std::string& dependencies = "", const std::string& more = "") {
  return R"({"name": ")" + name + R"(", "version": ")" + version + R"(", "dependencies": [)" +
         dependencies + "]" + more + "}";
}

std::string dependency(const std::string& name, const std::string& range) {
  return R"({"name": ")" + name + R"(", "range": )" + range + "}";
}

std::string document(const std::string& metamodels, const std::string& hops = "",
                     const std::string& more = "") {
  return R"({"metamodels": [)" + metamodels + R"(], "hops": [)" + hops + "]" + more + "}";
}

TEST(JsonCatalogue, RefusesWhatIsNotACatalogueAndSaysWhere) {
  const std::string a1 = metamodel("A", "1.0.0");
  const std::string hop = R"({"name": "A", "from": "1.0.0", "to": "1.0.0", "expensive": false})";
  const struct {
    std::string json;
    std::string expected;
  } cases[] = {
      {"", "not JSON: parse error at line 1, column 1"},
      {"{\"metamodels\":\n  [}", "not JSON: parse error at line 2, column 4"},
      {"{\"metamodels\": \"\xff\"}", "not JSON: parse error at line 1"},
      {document(a1) + "x", "not JSON: parse error at line 1"},
      {"[]", "must be an object, not an array"},
      {R"({"hops": []})", "the field \"metamodels\" is missing"},
      {R"({"metamodels": []})", "the field \"hops\" is missing"},
      {R"({"metamodels": {}, "hops": []})", "/metamodels: must be an array, not an object"},
      {document("", "", R"(, "hop": [])"), "there is no field \"hop\" here"},
      {document(a1 + ", 7"), "/metamodels/1: must be an object, not a number"},
      {document(R"({"name": "A", "dependencies": []})"),
       "/metamodels/0: the field \"version\" is missing"},
      {document(R"({"name": "A", "version": 1.2, "dependencies": []})"),
       "/metamodels/0/version: must be a text, not a number"},
      {document(R"({"name": "A", "version": "1.0", "version": "2.0", "dependencies": []})"),
       "/metamodels/0: the field \"version\" stands twice"},
      {document("", R"({"name": null, "name": null})"), "/hops/0: the field \"name\" stands twice"},
      {document(metamodel("", "1.0")), "/metamodels/0/name: must not be empty"},
      {document(metamodel("A", "")), "/metamodels/0/version: must not be empty"},
      {document(metamodel("A", "1.0\\u0000x")),
       "/metamodels/0/version: must not hold the character U+0000"},
      {document(metamodel("A", "18446744073709551616.0")),
       "/metamodels/0/version: \"18446744073709551616.0\" has a component beyond 64 bits"},
      {document(metamodel("A", "1.0", "", R"(, "semver": "1.0")")),
       "/metamodels/0/semver: only a text version has a semantic equivalent"},
      {document(metamodel("A", "x", "", R"(, "semver": "y")")),
       "/metamodels/0/semver: \"y\" is not a semantic version"},
      {document(a1 + "," + metamodel("A", "1.0")),
       "/metamodels/1: A@1.0.0 stands already at /metamodels/0"},
      {document(metamodel("A", "x") + "," + metamodel("A", "x")),
       "/metamodels/1: A@x stands already at /metamodels/0"},
      {document(metamodel("A", "x", "", R"(, "semver": "1.0")") + "," + a1 + "," +
                metamodel("A", "y", "", R"(, "semver": "1.0")")),
       "/metamodels/2/semver: 1.0.0 is already the equivalent of A@x at /metamodels/0"},
      {document(metamodel("A", "1.0", dependency("A", R"(["1.0"])"))),
       "/metamodels/0/dependencies/0/range: must be a pair [lower, upper) of versions, or one "
       "version"},
      {document(metamodel("A", "1.0", dependency("A", R"(["1.0", "z"])"))),
       "/metamodels/0/dependencies/0/range: \"z\" is not a semantic version"},
      {document(metamodel("A", "1.0", dependency("A", R"([1, 2])"))),
       "/metamodels/0/dependencies/0/range/0: must be a text, not a number"},
      {document(metamodel("A", "1.0", dependency("A", R"(["2.0", "1.9.9"])"))),
       "/metamodels/0/dependencies/0/range: the range [2.0, 1.9.9) is reversed"},
      {document(metamodel("A", "1.0", dependency("B", R"("1.0")"))),
       "/metamodels/0/dependencies/0/name: there is no metamodel \"B\""},
      {document(a1, R"({"name": "B", "from": "1.0", "to": "2.0", "expensive": false})"),
       "/hops/0/name: there is no metamodel \"B\""},
      {document(a1, hop + R"(, {"name": "A", "from": "1.0.0", "to": "2.0", "expensive": false})"),
       "/hops/1/to: there is no version 2.0.0 of metamodel \"A\""},
      {document(a1, R"({"name": "A", "from": "x", "to": "1.0", "expensive": false})"),
       "/hops/0/from: there is no version x of metamodel \"A\""},
      {document(a1, R"({"name": "A", "from": "1.0", "to": "1.0", "expensive": 1})"),
       "/hops/0/expensive: must be true or false, not a number"},
      {document(a1, "", R"(, "question": {"from": {}})"), "/question: the field \"to\" is missing"},
      {document(a1, "", R"(, "question": {"from": {"a/b": 1}, "to": {}})"),
       "/question/from/a~1b: must be a text, not a number"},
  };
  for (const auto& [json, expected] : cases) {
    EXPECT_EQ(errorOf(json).substr(0, expected.size()), expected) << json;
  }
}

TEST(JsonCatalogue, NamesTheFile) {
  const std::string missing = "/nowhere/catalogue.json";
  try {
    readJsonCatalogue(std::filesystem::path(missing));
    FAIL() << "no exception";
  } catch (const CatalogueError& error) {
    EXPECT_EQ(error.what(), missing + ": cannot be opened: No such file or directory");
    EXPECT_EQ(error.file(), missing);
  }
  EXPECT_THROW(readJsonCatalogue(std::filesystem::path("/")), CatalogueError);
}

TEST(JsonCatalogue, ReadsEveryKindOfVersionAndRange) {
  const Catalogue catalogue = read(
      document(metamodel("A", "1.2") + "," + metamodel("A", "2024a", "", R"(, "semver": "2.0.0")") +
                   "," + metamodel("A", "1.2.3-rc1") + "," +
                   metamodel("B", "1.0.0",
                             dependency("A", R"(["1.0", "3.0"])") + "," +
                                 dependency("A", R"("2024a")") + "," + dependency("A", R"("1.2")") +
                                 "," + dependency("A", R"(["1.0", "1.0"])")),
               R"({"name": "A", "from": "1.2.0", "to": "2024a", "expensive": true})",
               R"(, "question": {"from": {"A": "1.2"}, "to": {"A": "2024a"}})"));
  ASSERT_EQ(catalogue.metamodels().size(), 4U);
  EXPECT_EQ(catalogue.metamodels()[0].descriptor.version, VersionId(SemVer{1, 2, 0}));
  EXPECT_EQ(catalogue.metamodels()[1].equivalent, v(2));
  EXPECT_EQ(catalogue.metamodels()[2].descriptor.version, VersionId(u"1.2.3-rc1"));
  EXPECT_EQ(catalogue.metamodels()[3].descriptor.dependencies,
            (std::vector<Dependency>{{u"A", between(1, 3)},
                                     {u"A", u"2024a"},
                                     {u"A", VersionRange::singleVersion(SemVer{1, 2, 0})},
                                     {u"A", between(1, 1)}}));
  ASSERT_EQ(catalogue.hops().size(), 1U);
  EXPECT_TRUE(catalogue.hops()[0].expensive);
  EXPECT_EQ(catalogue.question()->to.at(u"A"), VersionId(u"2024a"));
}

TEST(CatalogueCycles, AreFoundBetweenVersionsAndPrinted) {
  const auto textOf = [](const std::string& metamodels) { return errorOf(document(metamodels)); };
  EXPECT_EQ(textOf(metamodel("A", "1.0", dependency("A", R"(["1.0", "2.0"])"))),
            "/metamodels/0/dependencies: the dependencies form a cycle: A@1.0.0 -> A@1.0.0");
  EXPECT_EQ(
      textOf(metamodel("X", "1.0", dependency("A", R"("1.0")")) + "," +
             metamodel("A", "1.0", dependency("B", R"(["1.0", "9.0"])")) + "," +
             metamodel("B", "1.0") + "," + metamodel("B", "2.0", dependency("C", R"("spring")")) +
             "," + metamodel("C", "spring", dependency("A", R"(["0.1", "1.0.1"])"))),
      "/metamodels/1/dependencies: the dependencies form a cycle: "
      "A@1.0.0 -> B@2.0.0 -> C@spring -> A@1.0.0");
  EXPECT_EQ(
      textOf(metamodel("A", "x", dependency("A", R"(["1.0", "2.0"])"), R"(, "semver": "1.5.0")")),
      "/metamodels/0/dependencies: the dependencies form a cycle: A@x -> A@x");
  EXPECT_EQ(
      textOf(metamodel("A", "1.0", dependency("B", R"("1.0")")) + "," + metamodel("B", "1.0") +
             "," + metamodel("B", "2.0", dependency("A", R"("1.0")")) + "," +
             metamodel("A", "2.0", dependency("A", R"("1.0")"))),
      "no error")
      << "names depend on one another, versions do not";
}

TEST(CatalogueCycles, LongChainsAndWideRangesAreNoBurden) {
  CatalogueContent content;
  constexpr std::uint64_t versions = 20000;
  for (std::uint64_t n = 1; n <= versions; ++n) {
    std::vector<Dependency> dependencies;
    if (n < versions) dependencies.push_back({u"A", between(n + 1, versions + 1)});
    content.metamodels.push_back({Metamodel(u"A", v(n), dependencies), std::nullopt});
  }
  EXPECT_NO_THROW(Catalogue{content});
  content.metamodels.back().descriptor.dependencies.push_back({u"A", between(1, 2)});
  EXPECT_THROW(Catalogue{content}, CatalogueError);
}

TEST(CatalogueRepository, AnswersAsAScanOfTheListsWould) {
  std::mt19937 random(5);
  CatalogueContent content;
  TestRepository plain;
  const std::u16string names[] = {u"A", u"B", u"C"};
  std::map<VersionId, int, bool (*)(const VersionId&, const VersionId&)> seen(
      [](const VersionId& left, const VersionId& right) { return printed(left) < printed(right); });
  for (const auto& name : names) {
    seen.clear();
    for (int i = 0; i < 40; ++i) {
      const std::uint64_t n = random() % 25;
      const bool isText = random() % 4 == 0;
      const VersionId version = isText
                                    ? VersionId(std::u16string(1, static_cast<char16_t>(u'a' + n)))
                                    : VersionId(SemVer{n / 5, n % 5, random() % 2});
      if (!seen.emplace(version, i).second) continue;
      std::optional<SemVer> equivalent;
      if (isText && random() % 2 == 0) {
        equivalent = SemVer{n / 5, n % 5, 0};
        plain.addEquivalent(name, version.getText(), *equivalent);
      }
      content.metamodels.push_back({plain.add(name, version), equivalent});
    }
  }
  for (int i = 0; i < 200; ++i) {
    const auto& from = content.metamodels[random() % content.metamodels.size()].descriptor;
    plain.addHop(from.name, from.version, from.version, i % 2 == 0);
    content.hops.emplace_back(from.name, from.version, from.version, i % 2 == 0);
  }
  CatalogueRepository repository{Catalogue(content)};
  const auto expectSame = [&](const std::u16string& name, const VersionRange& range) {
    std::vector<Metamodel> expected;
    std::vector<Metamodel> found;
    plain.findMetamodels(name, range, expected);
    repository.findMetamodels(name, range, found);
    EXPECT_EQ(found, expected) << range;
  };
  for (int i = 0; i < 300; ++i) {
    const auto bound = [&] { return SemVer{random() % 5, random() % 5, random() % 2}; };
    expectSame(names[random() % 3], SemVerRange{bound(), bound()});
  }
  expectSame(u"D", between(0, 9));
  for (const auto& [descriptor, equivalent] : content.metamodels) {
    expectSame(descriptor.name, VersionRange::singleVersion(descriptor.version));
    EXPECT_EQ(repository.getMetamodel(descriptor.name, descriptor.version),
              plain.getMetamodel(descriptor.name, descriptor.version));
    EXPECT_EQ(repository.extractSemVer(descriptor), plain.extractSemVer(descriptor));
    std::vector<Hop> expected;
    std::vector<Hop> found;
    plain.findHops(descriptor.name, descriptor.version, expected);
    repository.findHops(descriptor.name, descriptor.version, found);
    EXPECT_EQ(found, expected);
  }
}

/// Whether every dependency of every metamodel that is held is met by what is held.
bool isConsistent(const VersionBaseline& baseline) {
  for (const auto& [name, linked] : baseline.metamodels) {
    for (const auto& [needed, range] : linked->dependencies) {
      const auto held = baseline.metamodels.find(needed);
      if (held == baseline.metamodels.end() || !range.includes(held->second->version)) return false;
    }
  }
  return true;
}

TEST(RealCatalogue, QuestionIsAnsweredByALegalPath) {
  CatalogueRepository repository(readJsonCatalogue(std::filesystem::path(CATALOGUE_FILE)));
  const Question& question = *repository.catalogue().question();
  const auto path = repository.findPath(question.from, question.to);
  ASSERT_TRUE(path);
  Selection held = question.from;
  for (const BaselineHop& step : *path) {
    EXPECT_TRUE(isConsistent(step.to)) << step.to;
    for (const auto& [name, hop] : step.hops) {
      std::vector<Hop> offered;
      repository.findHops(name, held.at(name), offered);
      EXPECT_NE(std::find(offered.begin(), offered.end(), hop), offered.end()) << hop;
      held[name] = hop.to;
    }
    for (const auto& [name, linked] : step.to.metamodels) {
      const bool isNew = held.emplace(name, linked->version).second;
      EXPECT_TRUE(isNew || held.at(name) == linked->version) << *linked;
    }
  }
  for (const auto& [name, version] : question.to) EXPECT_EQ(held.at(name), version);
}

}  // namespace
}  // namespace test
