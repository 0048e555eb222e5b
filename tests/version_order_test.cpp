// Catalogues order the versions of a metamodel by Semantic Versioning 2.0.0.
#include <algorithm>
#include <array>

#include "catalogue/explanation/loose_ends.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/metamodel_details.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/version_text.hpp"
#include "support/catalogue_json.hpp"
#include "support/items.hpp"
#include "support/random_run.hpp"
#include "support/store_folder.hpp"

namespace test::version_order {
namespace {

using namespace tarn::evolution::catalogue;

using VersionOrder = StoreFolder;
using Texts = std::vector<std::string>;

bool isNumber(const std::string& text) {
  return text.find_first_not_of("0123456789") == std::string::npos;
}

/// As item 11 of Semantic Versioning 2.0.0 has it.
int compareIdentifiers(const std::string& left, const std::string& right) {
  if (isNumber(left) != isNumber(right)) return isNumber(left) ? -1 : 1;
  if (isNumber(left) && left.size() != right.size()) return left.size() < right.size() ? -1 : 1;
  return left.compare(right);
}

int compareLists(const Texts& left, const Texts& right) {
  for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
    if (const int order = compareIdentifiers(left[i], right[i])) return order;
  }
  return static_cast<int>(left.size()) - static_cast<int>(right.size());
}

int compare(const std::string& left, const std::string& right) {
  std::array<Texts, 2> numbers;
  std::array<Texts, 2> prereleases;
  for (std::size_t side = 0; side < 2; ++side) {
    const std::string text = parted(side == 0 ? left : right, '+').front();
    const std::size_t hyphen = text.find('-');
    numbers[side] = parted(text.substr(0, hyphen), '.');
    if (hyphen != text.npos) prereleases[side] = parted(text.substr(hyphen + 1), '.');
  }
  if (const int order = compareLists(numbers[0], numbers[1])) return order;
  if (prereleases[0].empty() != prereleases[1].empty()) return prereleases[0].empty() ? 1 : -1;
  return compareLists(prereleases[0], prereleases[1]);
}

const Texts unreadable{"spring", "1.2.0-01", "01.0.0-rc", "1.0.0-a..b", "1.0-rc", "1.0.0.1"};

bool isReadable(const std::string& text) {
  return std::find(unreadable.begin(), unreadable.end(), text) == unreadable.end();
}

std::string anyVersion(Random& random) {
  if (random.chance(10)) return random.oneOf(unreadable);
  const Texts numbers{
      "0", "1", "2", "10", "18446744073709551615", "18446744073709551616", "99999999999999999999"};
  const Texts identifiers{
      "alpha", "beta", "beta1", "B", "-", "0", "2", "10", "18446744073709551616"};
  std::string text = "1";
  if (random.chance(10)) text = random.oneOf(numbers);
  text += "." + numbers[random.below(random.chance(10) ? numbers.size() : 2)];
  text += "." + numbers[random.below(random.chance(10) ? numbers.size() : 3)];
  if (random.chance(60)) {
    text += "-" + random.oneOf(identifiers);
    while (random.chance(40)) text += "." + random.oneOf(identifiers);
  }
  if (random.chance(20)) text += random.chance(50) ? "+b" : "+001";
  return text;
}

std::string anyVersions(Random& random) {
  std::string text;
  if (random.chance(20)) text = "0.0.0 ";
  for (std::size_t count = 2 + random.below(8); count > 0; --count)
    text += anyVersion(random) + " ";
  return text;
}

/// Versions of A with all hops between them, and of B, each of which needs a range of A.
struct OrderQuestion {
  explicit OrderQuestion(const std::string& text) {
    for (const std::string& version : itemsIn(text)) {
      if (std::find(versions.begin(), versions.end(), version) != versions.end()) continue;
      versions.push_back(version);
      content.metamodels.push_back({Metamodel(u"A", parseVersion(version), {}), {}});
    }
    for (const std::string& from : versions) {
      for (const std::string& to : versions) {
        if (from != to)
          content.hops.emplace_back(u"A", parseVersion(from), parseVersion(to), false);
        if (isReadable(from) && isReadable(to) && compare(from, to) <= 0) addRange(from, to);
      }
    }
  }

  void addRange(const std::string& from, const std::string& to) {
    ranges.emplace_back(from, to);
    content.metamodels.push_back(
        {Metamodel(u"B", SemVer{ranges.size(), 0, 0}, {{u"A", parseRange(from, to)}}), {}});
  }

  Texts versions;
  std::vector<std::pair<std::string, std::string>> ranges;
  CatalogueContent content;
};

Texts textsOf(const std::vector<Metamodel>& metamodels) {
  Texts texts;
  for (const Metamodel& metamodel : metamodels) texts.push_back(textOf(metamodel.version));
  return texts;
}

VersionRepository::Direction directionBetween(const std::string& from, const std::string& to) {
  if (!isReadable(from) && !isReadable(to)) return VersionRepository::Unknown;
  if (!isReadable(from) || !isReadable(to)) {
    return isReadable(to) ? VersionRepository::Forward : VersionRepository::Backward;
  }
  const int order = compare(from, to);
  if (order == 0) return VersionRepository::Equal;
  return order < 0 ? VersionRepository::Forward : VersionRepository::Backward;
}

bool comesBefore(const std::string& left, const std::string& right) {
  if (!isReadable(left) || !isReadable(right)) return !isReadable(left) && isReadable(right);
  return compare(left, right) < 0;
}

/// A pair of a version and its next patch is that version alone.
bool isSingle(const std::string& from, const std::string& to) {
  const VersionRange range = parseRange(from, to);
  return range.isSemVerRange() &&
         range == VersionRange::singleVersion(range.getSemVerRange().lower);
}

void expectOrder(BrowsableRepository& repository, const OrderQuestion& question) {
  for (const std::string& from : question.versions) {
    const auto before = repository.getMetamodel(u"A", parseVersion(from));
    ASSERT_TRUE(before);
    EXPECT_EQ(textOf(before->version), from);
    EXPECT_EQ(repository.getMetamodel(u"A", before->version), before);
    Texts offered;
    std::vector<Hop> hops;
    repository.findHops(u"A", before->version, hops);
    for (const Hop& hop : hops) {
      const auto after = repository.getMetamodel(u"A", hop.to);
      ASSERT_TRUE(after);
      offered.push_back(textOf(after->version));
      EXPECT_EQ(repository.getDirection(*before, *after), directionBetween(from, offered.back()))
          << from << " -> " << offered.back();
    }
    Texts others = question.versions;
    std::erase(others, from);
    EXPECT_EQ(offered, others);
  }
  for (const auto& [from, to] : question.ranges) {
    Texts expected;
    for (const std::string& version : question.versions) {
      if (!isReadable(version) || compare(version, from) < 0) continue;
      if (isSingle(from, to) ? compare(version, from) == 0 : compare(version, to) < 0) {
        expected.push_back(version);
      }
    }
    std::vector<Metamodel> found;
    repository.findMetamodels(u"A", parseRange(from, to), found);
    EXPECT_EQ(textsOf(found), expected) << "[" << from << ", " << to << ")";
  }
  for (const std::string& single : question.versions) {
    if (!parseVersion(single).isSemVer()) continue;
    Texts expected;
    for (const std::string& version : question.versions) {
      if (isReadable(version) && compare(version, single) == 0) expected.push_back(version);
    }
    std::vector<Metamodel> found;
    repository.findMetamodels(u"A", VersionRange::singleVersion(parseVersion(single)), found);
    EXPECT_EQ(textsOf(found), expected) << single;
  }
  Texts listed;
  for (const auto& each : describeMetamodel(repository, u"A").versions) {
    listed.push_back(textOf(each.metamodel.descriptor.version));
  }
  Texts expected = question.versions;
  std::stable_sort(expected.begin(), expected.end(), comesBefore);
  EXPECT_EQ(listed, expected);
}

TEST_F(VersionOrder, IsThatOfSemanticVersioning) {
  RandomRun run(150);
  run.ask(anyVersions, [&](const std::string& text, Random&) {
    const OrderQuestion question(text);
    if (question.versions.size() < 2) return;
    run.count("pre-release beside release", text.find("-") != text.npos);
    make("order", question.content);
    EXPECT_FALSE(hasError(findingsIn(read("order.json"))));
    for (const char* name : {"order.json", "order.store"}) {
      const auto repository = openCatalogue(path(name));
      expectOrder(*repository, question);
      // What is asked by one form is answered as by the other.
      const auto ordered = describeMetamodel(*repository, u"A").versions;
      const auto& last = ordered.back().metamodel.descriptor;
      const auto first = std::find_if(ordered.begin(), ordered.end(), [](const auto& each) {
        return each.metamodel.precedence().has_value();
      });
      if (first == ordered.end() ||
          first->metamodel.precedence() == ordered.back().metamodel.precedence()) {
        continue;
      }
      const auto found = repository->findPath({{u"A", first->metamodel.descriptor.version}},
                                              {{u"A", parseVersion(textOf(last.version))}});
      ASSERT_TRUE(found);
      EXPECT_EQ(found->size(), 1U);
    }
  });
  run.expectPercentages({{"pre-release beside release", 20}});
}

TEST_F(VersionOrder, GoesByWhatATextIsSaidToStandFor) {
  CatalogueContent content;
  const auto add = [&](const char* version, std::optional<SemVer> equivalent = {}) {
    content.metamodels.push_back({Metamodel(u"A", parseVersion(version), {}), equivalent});
  };
  add("1.0.0-rc", SemVer{2, 0, 0});
  add("1.0.0");
  add("2.0.0-rc");
  add("2.0.0");
  make("stated", content);
  for (const char* name : {"stated.json", "stated.store"}) {
    const auto repository = openCatalogue(path(name));
    std::vector<Metamodel> found;
    repository->findMetamodels(u"A", parseRange("2.0.0-0", "3.0.0"), found);
    EXPECT_EQ(textsOf(found), (Texts{"1.0.0-rc", "2.0.0-rc", "2.0.0"}));
    found.clear();
    repository->findMetamodels(u"A", VersionRange::singleVersion(SemVer{2, 0, 0}), found);
    EXPECT_EQ(textsOf(found), (Texts{"1.0.0-rc", "2.0.0"}));
    EXPECT_EQ(textOf(repository->getMetamodel(u"A", SemVer{2, 0, 0})->version), "2.0.0");
    EXPECT_EQ(textOf(repository->getMetamodel(u"A", u"1.0.0-rc")->version), "1.0.0-rc");
  }
}

/// What is open is completed by the order of versions, not by that of the file.
TEST_F(VersionOrder, DecidesWhichVersionIsTheNewest) {
  CatalogueContent content;
  content.metamodels.push_back(
      {Metamodel(u"B", SemVer{1, 0, 0}, {{u"A", parseRange("1.0.0-0", "9.0.0")}}), {}});
  for (const char* version : {"2.0.0", "10.0.0-rc.1", "1.0.0-rc.10", "3.0.0", "1.0.0-rc.2"}) {
    content.metamodels.push_back({Metamodel(u"A", parseVersion(version), {}), {}});
  }
  make("open", content);
  for (const char* name : {"open.json", "open.store"}) {
    const auto repository = openCatalogue(path(name));
    const Selection selected{{u"B", SemVer{1, 0, 0}}};
    const auto completedBy = [&](VersionPreference preference) {
      return textOf(completeSelection(*repository, selected, preference).value().at(u"A"));
    };
    EXPECT_EQ(completedBy(VersionPreference::Newest), "3.0.0");
    EXPECT_EQ(completedBy(VersionPreference::Oldest), "1.0.0-rc.2");
    EXPECT_EQ(describe(findLooseEnds(*repository, selected, 100)),
              "4 baselines; pin some of these:\n  A: 4 choices, 1.0.0-rc.2 .. 3.0.0");
  }
}

}  // namespace
}  // namespace test::version_order
