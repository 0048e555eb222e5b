#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/json_catalogue.hpp"
#include "support/catalogue_json.hpp"
#include "support/legal_path.hpp"
#include "support/random_run.hpp"
#include "support/store_folder.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

/// The text with double quotes for single ones.
std::string quoted(std::string text) {
  std::replace(text.begin(), text.end(), '\'', '"');
  return text;
}

Catalogue read(const std::string& json) {
  std::istringstream in(quoted(json));
  return readJsonCatalogue(in);
}

TEST(JsonCatalogue, RefusesWhatIsNotACatalogueAndSaysWhere) {
  const auto document = [](const std::string& metamodels, const std::string& hops = "",
                           const std::string& more = "") {
    return "{'metamodels': [" + metamodels + "], 'hops': [" + hops + "]" + more + "}";
  };
  const auto version = [&](const std::string& value) {
    return document("{'name': 'A', 'dependencies': [], 'version': " + value + "}");
  };
  const auto range = [&](const std::string& value) {
    return document("{'dependencies': [{'name': 'A', 'range': " + value + "}]}");
  };
  const std::string hop = "{'name': 'A', 'from': '1.0', 'to': '1.0', 'expensive': 1}";
  const std::string metamodel = "/metamodels/0";
  const std::string dependency = "/metamodels/0/dependencies/0";
  const std::pair<std::string, std::string> cases[] = {
      {"", "not JSON: parse error at line 1, column 1"},
      {"{'metamodels':\n  [}", "not JSON: parse error at line 2, column 4"},
      {document("'\xff'"), "not JSON: parse error at line 1"},
      {"[]", "must be an object, not an array"},
      {"{'hops': []}", "the field 'metamodels' is missing"},
      {"{'metamodels': []}", "the field 'hops' is missing"},
      {"{'metamodels': {}, 'hops': []}", "/metamodels: must be an array, not an object"},
      {document("", "", ", 'hop': []"), "there is no field 'hop' here"},
      {document("7"), metamodel + ": must be an object, not a number"},
      {document("{}"), metamodel + ": the field 'dependencies' is missing"},
      {version("1.2"), metamodel + "/version: must be a text, not a number"},
      {version("'1.0', 'version': '2.0'"), metamodel + ": the field 'version' stands twice"},
      {document("", "{'name': null, 'name': null}"), "/hops/0: the field 'name' stands twice"},
      {version("''"), metamodel + "/version: must not be empty"},
      {version("'1.0\\u0000x'"), metamodel + "/version: must not hold the character U+0000"},
      {version("'1.0', 'semver': '1.0'"),
       metamodel + "/semver: only a text version has a semantic"},
      {version("'x', 'semver': 'y'"), metamodel + "/semver: 'y' is not a semantic version"},
      {range("['1.0']"), dependency + "/range: must be a pair [lower, upper) of versions, or one"},
      {range("['1.0', 'z']"), dependency + "/range: 'z' is not a semantic version"},
      {range("[1, 2]"), dependency + "/range/0: must be a text, not a number"},
      {range("['2.0', '1.9.9']"), dependency + "/range: the range [2.0, 1.9.9) is reversed"},
      {range("['1.1.18446744073709551615', '1.1']"),
       dependency + "/range: the range [1.1.18446744073709551615, 1.1) is reversed"},
      {document("", hop), "/hops/0/expensive: must be true or false, not a number"},
      {document("", "", ", 'question': {'from': {}}"), "/question: the field 'to' is missing"},
      {document("", "", ", 'question': {'from': {'a/b': 1}, 'to': {}}"),
       "/question/from/a~1b: must be a text, not a number"},
  };
  for (const auto& [json, expected] : cases) {
    const std::string error = catalogueErrorOf({}, [&json = json] { read(json); });
    EXPECT_EQ(error.substr(0, expected.size()), quoted(expected)) << json;
    EXPECT_TRUE(hasError(findingsIn(quoted(json)))) << json;
  }
  EXPECT_THROW(readJsonCatalogue(std::filesystem::path("/")), CatalogueError);
}

TEST(JsonCatalogue, ReadsEveryKindOfVersionAndRange) {
  const Catalogue catalogue = read(R"({'metamodels': [
      {'name': 'A', 'version': '1.2', 'dependencies': []},
      {'name': 'A', 'version': '2024a', 'dependencies': [], 'semver': '2.0.0'},
      {'name': 'A', 'version': '1.2.3-rc1', 'dependencies': []},
      {'name': 'B', 'version': '1.0.0', 'dependencies': [
        {'name': 'A', 'range': ['1.0', '3.0']}, {'name': 'A', 'range': '2024a'},
        {'name': 'A', 'range': '1.2'}, {'name': 'A', 'range': ['1.0', '1.0']}]}],
    'hops': [{'name': 'A', 'from': '1.2.0', 'to': '2024a', 'expensive': true}],
    'question': {'from': {'A': '1.2'}, 'to': {'A': '2024a'}}})");
  const CatalogueContent expected = contentOf(
      TestRepository("A1.2 A2024a~2 A1.2.3-rc1 B1:A[1,3)+A2024a+A1.2+A[1,1) A1.2>2024a!"));
  ASSERT_EQ(catalogue.metamodels().size(), expected.metamodels.size());
  for (std::size_t i = 0; i < expected.metamodels.size(); ++i) {
    EXPECT_EQ(catalogue.metamodels()[i].descriptor, expected.metamodels[i].descriptor);
    EXPECT_EQ(catalogue.metamodels()[i].equivalent, expected.metamodels[i].equivalent);
  }
  EXPECT_EQ(catalogue.content().hops, expected.hops);
  EXPECT_TRUE(catalogue.hops()[0].expensive);
  EXPECT_EQ(catalogue.question()->from, selection("A1.2"));
  EXPECT_EQ(catalogue.question()->to, selection("A2024a"));
}

TEST(Catalogue, RefusesWhatIsUnsoundAndSaysWhere) {
  const std::pair<std::string, std::string> cases[] = {
      {"A1.2 A1.2.0", "/metamodels/1: A@1.2.0 stands already at /metamodels/0"},
      {"Ax Ax", "/metamodels/1: A@x stands already at /metamodels/0"},
      {"Ax~1 A1 Ay~1",
       "/metamodels/2/semver: 1.0.0 is already the equivalent of A@x at /metamodels/0"},
      {"A1:A2+B1", "/metamodels/0/dependencies/1/name: there is no metamodel 'B'"},
      {"A1 B1>2", "/hops/0/name: there is no metamodel 'B'"},
      {"A1 A1>1 A1>2", "/hops/1/to: there is no version 2.0.0 of metamodel 'A'"},
      {"A1 Ax>1", "/hops/0/from: there is no version x of metamodel 'A'"},
      // Versions may depend on themselves, and on what is not there if that is optional.
      {"A1:A[1,2) B1:C1+%D1 C1:B1", "no error"},
  };
  for (const auto& [content, expected] : cases) {
    TestRepository repository(content);
    EXPECT_EQ(catalogueErrorOf({}, [&] { Catalogue{contentOf(repository)}; }), quoted(expected))
        << content;
    EXPECT_EQ(hasError(findingsIn(toJson(repository).dump())), expected != "no error") << content;
  }
}

TEST(Catalogue, LongChainsAndWideRangesAreNoBurden) {
  std::string content = "A20000";
  for (int n = 1; n < 20000; ++n) {
    content += " A" + std::to_string(n) + ":A[" + std::to_string(n + 1) + ",20001)";
  }
  TestRepository repository(content);
  EXPECT_FALSE(CatalogueRepository{Catalogue(contentOf(repository))}.hasRequirements());
  // All lead back then, for each admits the last version.
  repository.metamodels[0].dependencies.emplace_back(u"A", between(1, 2));
  CatalogueRepository circle{Catalogue(contentOf(repository))};
  for (const CatalogueMetamodel& metamodel : circle.listMetamodels(u"A")) {
    EXPECT_TRUE(metamodel.descriptor.dependencies.empty());
  }
}

TEST(CatalogueRepository, AnswersAsAScanOfTheListsWould) {
  Random random(RandomRun(1).seed());
  std::vector<std::string> items;
  for (int i = 0; i < 150; ++i) {
    const std::string number = std::to_string(i / 30) + "." + std::to_string(i / 6 % 5);
    const std::string text = "text" + std::to_string(i) + (random() % 2 == 0 ? "~" + number : "");
    items.push_back("ABC"[i % 3] +
                    (i / 3 % 2 == 0 ? text : number + "." + std::to_string(random() % 2)));
  }
  std::shuffle(items.begin(), items.end(), random);
  TestRepository plain("");
  for (const std::string& item : items) plain.add(item);
  for (int i = 0; i < 200; ++i) {
    const Metamodel& from = plain.metamodels[random() % items.size()];
    plain.hops.emplace_back(from.name, from.version, from.version, i % 2 == 0);
  }
  CatalogueRepository repository{Catalogue(contentOf(plain))};
  const auto expectSame = [&](const std::u16string& name, const VersionRange& range) {
    std::vector<Metamodel> found[2];
    plain.findMetamodels(name, range, found[0]);
    repository.findMetamodels(name, range, found[1]);
    EXPECT_EQ(found[0], found[1]) << range;
  };
  const auto bound = [&] { return SemVer{random() % 5, random() % 5, random() % 2}; };
  for (int i = 0; i < 300; ++i) expectSame(u"A", SemVerRange{bound(), bound()});
  expectSame(u"D", between(0, 9));
  for (const Metamodel& metamodel : plain.metamodels) {
    expectSame(metamodel.name, VersionRange::singleVersion(metamodel.version));
    EXPECT_EQ(repository.extractSemVer(metamodel), plain.extractSemVer(metamodel));
    EXPECT_EQ(hopsFrom(repository, metamodel), hopsFrom(plain, metamodel));
  }
}

TEST(CatalogueRepository, AnswersTheRealQuestionByALegalPath) {
  CatalogueRepository repository(readJsonCatalogue(std::filesystem::path(CATALOGUE_FILE)));
  const Question& question = *repository.catalogue().question();
  const auto path = repository.findPath(question.from, question.to);
  ASSERT_TRUE(path && !path->empty());
  expectLegal(repository, *path);
  EXPECT_EQ(path->front().from, repository.combine(question.from).at(0));
  EXPECT_TRUE(path->back().to.includes(repository.combine(question.to).at(0)));
}

}  // namespace
}  // namespace test
