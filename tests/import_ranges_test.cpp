// The ranges of other programs: which versions they admit, and what a catalogue makes of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <tuple>

#include "catalogue/catalogue_index.hpp"
#include "catalogue/import/catalogue_assembly.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "catalogue/utf16.hpp"
#include "support/random_run.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

/// A version that is a release, a pre-release or no number, few of them different.
std::string anyVersion(Random& random) {
  const auto number = [&] { return std::to_string(random.below(3)); };
  std::string text = number() + "." + number() + "." + number();
  if (random.chance(30)) text += random.chance(50) ? "-rc." + number() : "-alpha";
  return random.chance(5) ? "v" + number() : text;
}

std::string anyRange(Random& random) {
  static const std::vector<std::string> signs{">=", "<", "<=", ">", "", "="};
  std::string text;
  for (std::size_t pieces = random.upTo(3); pieces > 0; --pieces) {
    if (!text.empty()) text += random.chance(60) ? " || " : " ";
    text += random.oneOf(signs) + std::to_string(random.below(3)) + "." +
            std::to_string(random.below(3)) + "." + std::to_string(random.below(3)) +
            (random.chance(25) ? "-beta" : "");
  }
  return text;
}

// Whatever versions there are and whatever a range asks for, the catalogue admits just these.
TEST(ImportAssembly, AdmitsJustWhatTheSourceMeans) {
  RandomRun run(2000);
  const auto make = [](Random& random) { return std::to_string(random() >> 1); };
  const auto check = [&](const std::string& text, Random& /*random*/) {
    Random random(std::stoull(text));
    const SourcePlace place(std::make_shared<const std::string>("random"), 1);
    const auto grammar = random.chance(50) ? RangeGrammar::Npm : RangeGrammar::Operator;
    ForeignPart part;
    ForeignPackage& needed = part.catalogue["needed"];
    needed.ordersPrereleases = random.chance(70);
    for (std::size_t count = random.upTo(12); count > 0; --count) {
      const std::string version = anyVersion(random);
      if (!needed.find(version)) needed.addVersion(version, place);
    }
    const std::string wanted = anyRange(random);
    const ForeignRange range = parseForeignRange(wanted, grammar);
    part.catalogue["user"]
        .addVersion("1.0.0", place)
        .dependencies.push_back({"needed", range, wanted, place});
    ImportLog log(true);
    const CatalogueContent content = assembleCatalogue({part}, {}, log).content;
    std::vector<std::u16string> expected;
    for (const ForeignVersion& version : needed.versions()) {
      if (range.matches(version.text, version.order)) {
        expected.push_back(toUtf16(version.text));
      }
    }
    const CatalogueMetamodel& user = content.metamodels.back();
    if (user.descriptor.name != u"user") {
      EXPECT_TRUE(expected.empty()) << wanted;
      return;
    }
    const auto& dependency = user.descriptor.dependencies.at(0);
    std::vector<std::u16string> admitted;
    const CatalogueIndex index(content.metamodels, {});
    for (const auto position : index.metamodelsIn(u"needed", dependency.range)) {
      admitted.push_back(toUtf16(textOf(content.metamodels[position].descriptor.version)));
    }
    std::sort(expected.begin(), expected.end());
    std::sort(admitted.begin(), admitted.end());
    EXPECT_EQ(admitted, expected) << wanted << " became " << rangeText(dependency.range);
    run.count("union", isUnion(dependency.range));
    run.count("one range", !isUnion(dependency.range));
  };
  run.ask(make, check);
  run.expectPercentages({{"union", 3}, {"one range", 20}});
}

// What the README of the node-semver package says of its grammar.
TEST(ImportRanges, AreThoseOfNpm) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      // range, versions in it, versions that are not
      {"1.2 - 2.3.4", "1.2.0 2.3.4", "1.1.9 2.3.5 2.0.0-a"},
      {"1.2.3 - 2.3", "2.3.99", "2.4.0 2.4.0-0"},
      {"*", "0.0.0 9.9.9", "1.0.0-a"},
      {"", "0.0.0", "1.0.0-a"},
      {"1.x || 3", "1.9.0 3.0.1", "2.0.0 4.0.0"},
      {"~1.2.3-beta.2", "1.2.3-beta.4 1.2.9", "1.2.4-beta.2 1.3.0"},
      {"~0.2", "0.2.9", "0.3.0"},
      {"^0.0.3", "0.0.3", "0.0.4"},
      {"^0.0", "0.0.9", "0.1.0"},
      {"^0.x", "0.9.9", "1.0.0"},
      {"^1.2.3-rc", "1.2.3-rc.1 1.9.0", "1.2.3-beta 1.2.4-rc 2.0.0"},
      {">1.2", "1.3.0", "1.2.9"},
      {"<=1", "1.9.9", "2.0.0"},
      {">*", "", "0.0.0 1.0.0"},
      {" >= 1.2.7\t<1.3.0 ", "1.2.8", "1.3.0 1.2.6"},
      {"=v1.2.3+build", "1.2.3 1.2.3+other", "1.2.4"},
      {"* || 1.0.0-a", "1.0.0", "1.0.0-a"},
  };
  for (const auto& [text, within, outside] : cases) {
    const ForeignRange range = parseForeignRange(text, RangeGrammar::Npm);
    for (const auto& [versions, isWithin] : {std::pair(within, true), std::pair(outside, false)}) {
      std::istringstream words(versions);
      for (std::string version; words >> version;) {
        EXPECT_EQ(range.matches(version, parseFullVersion(version)), isWithin)
            << text << " " << version;
      }
    }
  }
  for (const char* text : {"latest", "1.2.3.4", "1..2", ">= ", "1.2.3-", "^", "1.2-a", "git://x"}) {
    EXPECT_THROW(parseForeignRange(text, RangeGrammar::Npm), std::invalid_argument) << text;
  }
  for (const char* text : {"", "1.2", "^1.2.3", "~1", "1.2.3 ||", "!1.x"}) {
    EXPECT_THROW(parseForeignRange(text, RangeGrammar::Operator), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace test
