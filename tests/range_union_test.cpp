// Dependencies on several ranges of one name.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "catalogue/utf16.hpp"
#include "catalogue/version_text.hpp"
#include "support/evopath_program.hpp"
#include "support/random_run.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

using RangeUnion = EvopathProgram;

TEST(RangeUnionText, KeepsWhateverItConsistsOf) {
  const std::vector<VersionRange> pieces{between(1, 2),
                                         VersionRange::singleVersion(SemVer{3, 0, 1}),
                                         u"a, \"b\" or [1.0.0, 2.0.0)\\", u"any of 1.0.0, 2.0.0"};
  const VersionRange both = unionOf(pieces);
  EXPECT_TRUE(isUnion(both));
  EXPECT_EQ(piecesOf(both), pieces);
  EXPECT_EQ(unionOf({between(1, 2)}), between(1, 2));
  EXPECT_THROW(unionOf({}), std::invalid_argument);
  for (const char16_t* text :
       {u"", u"any of ", u"any of x", u"any of 1.0.0,", u"any of 1.0.0, ", u"any of [1.0.0, 2.0.0",
        u"any of [1.0.0", u"any of \"a", u"any of \"a\\", u"any of 1.0.0 2.0.0", u"1.0.0, 2.0.0"}) {
    EXPECT_FALSE(isUnion(text));
    EXPECT_EQ(piecesOf(text), std::vector<VersionRange>{text});
  }
  EXPECT_THROW(parseVersion("any of these"), std::invalid_argument);
}

std::u16string textVersion(std::uint64_t n) {
  return toUtf16("t" + std::to_string(n));
}

VersionRange anyPiece(Random& random) {
  const std::uint64_t lower = random.below(7);
  if (random.chance(30)) return textVersion(lower);
  return between(lower, lower + random.upTo(3));
}

CatalogueMetamodel anyVersionOfA(Random& random, std::uint64_t n) {
  if (random.chance(70)) return {Metamodel(u"A", SemVer{n, 0, 0}, {}), {}};
  CatalogueMetamodel text{Metamodel(u"A", textVersion(n), {}), {}};
  if (random.chance(50)) text.equivalent = SemVer{n, 1, 0};
  return text;
}

/// Versions of A, some of them texts with an equivalent or without, and of B, which needs them.
CatalogueContent anyContent(Random& random) {
  CatalogueContent content;
  std::vector<std::uint64_t> numbers{0, 1, 2, 3, 4, 5, 6};
  std::shuffle(numbers.begin(), numbers.end(), random);
  for (const std::uint64_t n : numbers) content.metamodels.push_back(anyVersionOfA(random, n));
  for (std::uint64_t n = 0; n < 4; ++n) {
    std::vector<VersionRange> pieces(random.upTo(4));
    for (VersionRange& piece : pieces) piece = anyPiece(random);
    content.metamodels.push_back({Metamodel(u"B", SemVer{n, 0, 0}, {{u"A", unionOf(pieces)}}), {}});
  }
  return content;
}

/// The versions of A that a range admits, in the catalogue's order.
std::vector<Metamodel> admitted(const CatalogueContent& content, const VersionRange& range) {
  std::vector<Metamodel> result;
  const auto pieces = piecesOf(range);
  for (const CatalogueMetamodel& each : content.metamodels) {
    const auto admits = [&](const VersionRange& piece) {
      return piece.includes(each.descriptor.version) ||
             (each.equivalent && piece.includes(*each.equivalent));
    };
    const bool isAdmitted = std::any_of(pieces.begin(), pieces.end(), admits);
    if (each.descriptor.name == u"A" && isAdmitted) result.push_back(each.descriptor);
  }
  return result;
}

TEST_F(RangeUnion, AdmitsWhatAnyOfItsRangesAdmits) {
  RandomRun run(40);
  const auto make = [](Random& random) { return std::to_string(random() >> 1); };
  run.ask(make, [&](const std::string& text, Random& /*random*/) {
    Random random(std::stoull(text));
    const CatalogueContent content = anyContent(random);
    this->make("c", content);
    exportCatalogue(path("c.store"), path("again.json"));
    ASSERT_EQ(read("again.json"), read("c.json"));
    for (const char* file : {"c.json", "c.store"}) {
      const auto repository = openCatalogue(path(file));
      for (const CatalogueMetamodel& metamodel : content.metamodels) {
        for (const Dependency& dependency : metamodel.descriptor.dependencies) {
          std::vector<Metamodel> found;
          repository->findMetamodels(dependency.name, dependency.range, found);
          EXPECT_EQ(found, admitted(content, dependency.range)) << dependency.range;
        }
      }
    }
    // What others need cannot go.
    const auto& gone = random.oneOf(content.metamodels).descriptor;
    CatalogueContent left = content;
    std::erase_if(left.metamodels, [&](const auto& each) { return each.descriptor == gone; });
    std::size_t obstacles = 0;
    for (const CatalogueMetamodel& metamodel : left.metamodels) {
      for (const Dependency& dependency : metamodel.descriptor.dependencies) {
        obstacles += admitted(left, dependency.range).empty() &&
                     !admitted(content, dependency.range).empty();
      }
    }
    EXPECT_EQ(removeFromStore(path("c.store"), {{gone.name, gone.version}}).obstacleCount,
              obstacles);
    run.count("kept", obstacles > 0);
  });
  run.expectPercentages({{"kept", 1}});
}

TEST_F(RangeUnion, IsReadFromJsonAndPartOfCycles) {
  const auto errorOf = [&](const std::string& range, const std::string& needs = "[]") {
    write("c.json",
          R"({"metamodels": [{"name": "A", "version": "1.0", "dependencies": )" + needs +
              R"(}, {"name": "B", "version": "1.0", "dependencies": [{"name": "A", "range": )" +
              range + "}]}], \"hops\": []}");
    const std::string error =
        catalogueErrorOf(path("c.json"), [&] { openCatalogue(path("c.json")); });
    const std::string ofStore =
        catalogueErrorOf(path("c.json"), [&] { importCatalogue(path("c.json"), path("c.store")); });
    EXPECT_EQ(ofStore, error);
    return error;
  };
  const std::string place = "/metamodels/1/dependencies/0/range";
  EXPECT_EQ(errorOf(R"({"anyOf": [["1.0", "2.0"], "3.0", "spring"]})"), "no error");
  EXPECT_EQ(errorOf(R"({"anyOf": []})"), place + "/anyOf: a union of no ranges admits nothing");
  EXPECT_EQ(errorOf(R"({"anyOf": [["2.0", "1.0"]]})"),
            place + "/anyOf/0: the range [2.0, 1.0) is reversed");
  EXPECT_EQ(errorOf(R"({"anyOf": [{"anyOf": ["1.0"]}]})"),
            place + "/anyOf/0: must be a text, not an object");
  EXPECT_EQ(errorOf(R"({"oneOf": []})"), place + ": there is no field \"oneOf\" here");
  const std::string mutual = R"([{"name": "B", "range": {"anyOf": [["0.1", "0.2"], "1.0"]}}])";
  EXPECT_EQ(errorOf(R"({"anyOf": ["9.0", "1.0"]})", mutual), "no error");
  for (const char* file : {"c.json", "c.store"}) {
    for (const char16_t* name : {u"A", u"B"}) {
      EXPECT_EQ(openCatalogue(path(file))->listMetamodels(name).front().requirements.size(), 1U);
    }
  }
}

TEST_F(RangeUnion, IsToldInExplanations) {
  write("c.json", R"({"metamodels": [
      {"name": "A", "version": "1.0", "dependencies": []},
      {"name": "A", "version": "3.0", "dependencies": []},
      {"name": "B", "version": "1.0", "dependencies": [
        {"name": "A", "range": {"anyOf": ["1.0", ["4.0", "5.0"], "spring"]}}]},
      {"name": "C", "version": "1.0", "dependencies": [
        {"name": "A", "range": {"anyOf": ["0.1", ["3.0", "5.0"]]}}]}], "hops": []})");
  const std::string asked = "explain c.json --from B=1.0,C=1.0 --to A=3.0";
  const auto [status, text] = run(asked + " 2>&1");
  EXPECT_EQ(status, 1);
  EXPECT_NE(text.find("  B 1.0.0 needs A 1.0.0 or [4.0.0, 5.0.0) or spring\n"
                      "  C 1.0.0 needs A 0.1.0 or [3.0.0, 5.0.0)\n"),
            std::string::npos)
      << text;
  const auto told = nlohmann::json::parse(run(asked + " --json").second);
  EXPECT_EQ(told["clash"]["requirements"][0]["range"].dump(),
            R"({"anyOf":[["1.0.0","1.0.1"],["4.0.0","5.0.0"],"spring"]})");
}

}  // namespace
}  // namespace test
