// Stores answer as the catalogues in memory do that they were made of.
#include <algorithm>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/store/sqlite_catalogue_repository.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "support/plain_database.hpp"
#include "support/random_question.hpp"
#include "support/store_folder.hpp"
#include "support/test_question.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

using Store = StoreFolder;

Selection selectionOf(const VersionBaseline& baseline) {
  Selection result;
  for (const auto& [name, linked] : baseline.metamodels) result.emplace(name, linked->version);
  return result;
}

void expectSameMetamodels(BrowsableRepository& left, BrowsableRepository& right,
                          const std::u16string& name) {
  const auto metamodels = left.listMetamodels(name);
  const auto others = right.listMetamodels(name);
  ASSERT_EQ(metamodels.size(), others.size());
  for (std::size_t i = 0; i < metamodels.size(); ++i) {
    const auto& [descriptor, equivalent, note, dependencyNotes, requirements] = metamodels[i];
    EXPECT_EQ(descriptor, others[i].descriptor);
    EXPECT_EQ(equivalent, others[i].equivalent);
    EXPECT_EQ(note, others[i].note);
    EXPECT_EQ(dependencyNotes, others[i].dependencyNotes);
    ASSERT_EQ(requirements.size(), others[i].requirements.size());
    for (std::size_t j = 0; j < requirements.size(); ++j) {
      EXPECT_EQ(requirements[j].needed.name, others[i].requirements[j].needed.name);
      EXPECT_EQ(requirements[j].needed.range, others[i].requirements[j].needed.range);
      EXPECT_EQ(requirements[j].needed.isOptional, others[i].requirements[j].needed.isOptional);
      EXPECT_EQ(requirements[j].note, others[i].requirements[j].note);
    }
    EXPECT_EQ(left.findVersionNote(name, descriptor.version), note);
    EXPECT_EQ(right.findVersionNote(name, descriptor.version), note);
  }
}

void expectSameHops(BrowsableRepository& left, BrowsableRepository& right,
                    const std::u16string& name) {
  const auto hops = left.listHops(name);
  const auto others = right.listHops(name);
  EXPECT_EQ(hops, others);
  for (std::size_t i = 0; i < hops.size(); ++i) {
    EXPECT_EQ(hops[i].expensive, others[i].expensive);
    EXPECT_EQ(left.findHopNote(hops[i]), right.findHopNote(hops[i]));
  }
}

void expectSameLists(BrowsableRepository& left, BrowsableRepository& right) {
  EXPECT_EQ(left.listNames(), right.listNames());
  for (const std::u16string& name : left.listNames()) {
    expectSameMetamodels(left, right, name);
    expectSameHops(left, right, name);
  }
}

/// Nothing, more often than not.
std::u16string anyNote(Random& random) {
  const std::u16string notes[] = {u"leaks", u"see \u20ac\n\"there\"\r\n", u"\U0001F600 \\",
                                  std::u16string(300, u'x'), std::u16string(1, u'\0') + u"x"};
  return random.chance(60) ? u"" : random.oneOf(notes);
}

void tellOf(CatalogueContent& content, Random& random) {
  for (CatalogueMetamodel& metamodel : content.metamodels) {
    metamodel.note = anyNote(random);
    auto& notes = metamodel.dependencyNotes;
    for (std::size_t i = metamodel.descriptor.dependencies.size(); i > 0; --i) {
      notes.push_back(anyNote(random));
    }
    while (!notes.empty() && notes.back().empty()) notes.pop_back();
  }
  for (const Hop& hop : content.hops) content.hopNotes.add(hop, anyNote(random));
}

TEST_F(Store, AnswersRandomQuestionsAsInMemory) {
  RandomRun run(80);
  run.ask(randomQuestion, [&](const std::string& text, Random& notes) {
    TestQuestion random(text);
    if (!random.isPosed()) return;
    CatalogueContent content = contentOf(random.repository);
    content.question =
        Question{selectionOf(random.sources.front()), selectionOf(random.targets.front())};
    tellOf(content, notes);
    make("random", content);
    CatalogueRepository memory{Catalogue(content)};
    SqliteCatalogueRepository store(path("random.store"));
    const Question question = store.getQuestion().value();
    EXPECT_EQ(question.from, content.question->from);
    EXPECT_EQ(question.to, content.question->to);
    const auto pathIn = [&](VersionRepository& repository) {
      return outcomeOf([&] {
        return repository.findPath(repository.combine(question.from),
                                   repository.combine(question.to), random.direction);
      });
    };
    EXPECT_EQ(pathIn(store), pathIn(memory));
    EXPECT_EQ(describe(store.combine(question.to)), describe(memory.combine(question.to)));
    expectSameLists(store, memory);
    CatalogueRepository again(readJsonCatalogue(path("random.json")));
    expectSameLists(again, memory);
    CatalogueRepository unpacked{Catalogue(memory.catalogue().content())};
    expectSameLists(unpacked, memory);
    run.count("asked");
  });
  run.expectPercentages({{"asked", 15}});
}

TEST_F(Store, LooksUpVersionsOfEverySizeAndKindAsInMemory) {
  const std::uint64_t half = std::uint64_t{1} << 63;
  const std::uint64_t components[] = {0, 1, half - 1, half, ~std::uint64_t{0}};
  std::vector<SemVer> versions;
  for (const auto major : components) {
    for (const auto minor : components) {
      for (const auto patch : components) versions.push_back({major, minor, patch});
    }
  }
  Random random(RandomRun(1).seed());
  std::shuffle(versions.begin(), versions.end(), random);
  CatalogueContent content;
  for (std::size_t i = 0; i < versions.size(); ++i) {
    // U+FF21 and U+1D400: the other way round in UTF-8 than in UTF-16.
    const std::u16string name = i % 3 == 0 ? u"\uff21" : i % 3 == 1 ? u"\U0001d400" : u"Z";
    const std::u16string text = u"text \"\u00e9\U0001d400" + std::u16string(i, u'x');
    const bool isText = i % 5 == 0;
    const VersionId version = isText ? VersionId(text) : VersionId(versions[i]);
    const bool hasEquivalent = isText && i % 2 == 0;
    content.metamodels.push_back(
        {Metamodel(name, version, {}), hasEquivalent ? std::optional(versions[i]) : std::nullopt});
    for (int copy = 0; copy < 3; ++copy)
      content.hops.emplace_back(name, version, version, copy == 1);
  }
  std::shuffle(content.hops.begin(), content.hops.end(), random);
  make("wide", content);
  CatalogueRepository memory{Catalogue(content)};
  SqliteCatalogueRepository store(path("wide.store"));
  expectSameLists(store, memory);
  const auto expectSame = [&](const std::u16string& name, const VersionRange& range) {
    std::vector<Metamodel> found[2];
    memory.findMetamodels(name, range, found[0]);
    store.findMetamodels(name, range, found[1]);
    EXPECT_EQ(found[0], found[1]) << range;
  };
  for (int i = 0; i < 1000; ++i) {
    const SemVerRange range{versions[random() % versions.size()], versions[random() % 125]};
    expectSame(content.metamodels[random() % 125].descriptor.name, range);
  }
  for (const char16_t* name : {u"unknown", u"", u"Z\xd800", u"\ufffd"}) {
    expectSame(name, SemVerRange{{0, 0, 0}, {~std::uint64_t{0}, 0, 0}});
  }
  expectSame(u"Z", u"text \xd800");
  for (const CatalogueMetamodel& metamodel : content.metamodels) {
    const auto& descriptor = metamodel.descriptor;
    const auto& equivalent = metamodel.equivalent;
    expectSame(descriptor.name, VersionRange::singleVersion(descriptor.version));
    EXPECT_EQ(hopsFrom(store, descriptor), hopsFrom(memory, descriptor));
    EXPECT_EQ(store.extractSemVer(descriptor), memory.extractSemVer(descriptor));
    if (equivalent) {
      expectSame(descriptor.name, VersionRange::singleVersion(*equivalent));
      const Metamodel asSemantic(descriptor.name, *equivalent, {});
      EXPECT_EQ(hopsFrom(store, asSemantic), hopsFrom(memory, asSemantic));
    }
  }
}

/// A small catalogue that is seldom sound.
std::string randomContent(Random& random) {
  const auto someVersion = [&] {
    return random() % 4 == 0 ? "x" + std::to_string(random() % 3) : std::to_string(random() % 6);
  };
  std::string content = "A0";
  for (char name = 'A'; name < 'D'; ++name) {
    for (unsigned left = 2; left > 0; --left) {
      const std::string version = someVersion();
      content += std::string{' ', name} + version;
      if (version[0] == 'x' && random() % 2 == 0) content += "~" + std::to_string(random() % 3);
      if (random() % 2 == 0) {
        content +=
            std::string{':', static_cast<char>(random() % 20 == 0 ? 'E' : 'A' + random() % 3)};
        content += random() % 2 == 0 ? someVersion() : "[" + std::to_string(random() % 3) + ",4)";
      }
    }
  }
  if (random() % 3 == 0) content += " " + std::string{"ABE"[random() % 3]} + "0>" + someVersion();
  return content;
}

TEST_F(Store, RefusesWhatLoadingRefusesInTheSameWords) {
  RandomRun run(150);
  run.ask(randomContent, [&](const std::string& content, Random&) {
    make("random", contentOf(TestRepository(content)), false);
    const auto file = path("random.json");
    const std::string expected = catalogueErrorOf(file, [&] { readJsonCatalogue(file); });
    EXPECT_EQ(catalogueErrorOf(file, [&] { importCatalogue(file, path("random.store")); }),
              expected);
    run.count(expected == "no error" ? "sound" : "refused");
  });
  run.expectPercentages({{"sound", 6}, {"refused", 18}});
}

TEST_F(Store, GrowsToWhatItWouldHaveBeenImportedAs) {
  RandomRun run(20);
  const auto inOrder = [](Random& random) {
    return QuestionDraft::loose(random, random.upTo(4)).text(random);
  };
  run.ask(inOrder, [&](const std::string& text, Random& random) {
    CatalogueContent whole = contentOf(TestRepository(QuestionText(text).catalogue));
    for (auto hop = whole.hops.begin(); hop != whole.hops.end();) {  // a second one is refused
      const bool isSecond = std::find(whole.hops.begin(), hop, *hop) != hop;
      hop = isSecond ? whole.hops.erase(hop) : hop + 1;
    }
    tellOf(whole, random);
    CatalogueContent parts[2] = {whole, whole};
    const auto half = static_cast<std::ptrdiff_t>(whole.metamodels.size() / 2);
    parts[0].metamodels.erase(parts[0].metamodels.begin() + half, parts[0].metamodels.end());
    parts[0].hops.clear();
    parts[1].metamodels.erase(parts[1].metamodels.begin(), parts[1].metamodels.begin() + half);
    make("first", parts[0]);
    make("second", parts[1], false);
    make("whole", whole, false);
    addToStore(path("first.store"), path("second.json"));
    exportCatalogue(path("first.store"), path("exported.json"));
    EXPECT_EQ(read("exported.json"), read("whole.json"));
  });
}

TEST_F(Store, AddsAllOrNothing) {
  make("held", contentOf(TestRepository("A1 Ax~2 B1:A1 A1>x")));
  const std::string before = read("held.json");
  const std::pair<std::string, std::string> cases[] = {
      {"B2:A1 A1", "/metamodels/1: A@1.0.0 stands already in the store"},
      {"A3 Ay~2", "/metamodels/1/semver: 2.0.0 is already the equivalent of A@x in the store"},
      {"B2:A1 B3:C1", "/metamodels/1/dependencies/0/name: there is no metamodel \"C\""},
      {"B2 B1>3", "/hops/0/to: there is no version 3.0.0 of metamodel \"B\""},
      {"C1:B1 A1.0.1:C[1,2)", "no error"},
      {"A1>x", "/hops/0: the hop of \"A\" from 1.0.0 to x stands already in the store"},
      {"Ax>1 A1>x!",
       "/hops/1: the hop of \"A\" from 1.0.0 to x stands already in the store, there as one that "
       "is "
       "not expensive"},
      {"Ax>1! Ax>1",
       "/hops/1: the hop of \"A\" from x to 1.0.0 stands already at /hops/0, there as an expensive "
       "one"},
      {"D1 A2.5:D2 D2:A[2.5,3)", "no error"},
  };
  for (const auto& [content, expected] : cases) {
    importCatalogue(path("held.json"), path("held.store"));
    make("addition", contentOf(TestRepository(content)), false);
    EXPECT_EQ(catalogueErrorOf(path("addition.json"),
                               [&] { addToStore(path("held.store"), path("addition.json")); }),
              expected);
    exportCatalogue(path("held.store"), path("after.json"));
    EXPECT_EQ(read("after.json") == before, expected != "no error") << content;
  }
}

TEST_F(Store, RemovesOnlyWhatNothingElseNeeds) {
  const std::string held = "A1 Ax~1.5 A2 B1:A[1,2) B2:Ax C1:A1 D1:D9 E1:A[7,7) A1>2 A1.5>2 A2>1";
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"A2", "", "A1 Ax~1.5 B1:A[1,2) B2:Ax C1:A1 D1:D9 E1:A[7,7)"},
      {"A1", "C@1.0.0", ""},
      {"A1 C1", "", "Ax~1.5 A2 B1:A[1,2) B2:Ax D1:D9 E1:A[7,7) A1.5>2"},
      {"A1 C1 Ax", "B@1.0.0 B@2.0.0", ""},
      {"A B C", "E@1.0.0", ""},
      {"D", "", "A1 Ax~1.5 A2 B1:A[1,2) B2:Ax C1:A1 E1:A[7,7) A1>2 A1.5>2 A2>1"},
      {"A B C D E", "", ""},
  };
  for (const auto& [removed, obstacles, left] : cases) {
    make("held", contentOf(TestRepository(held)));
    std::vector<RemovalChoice> choices;
    std::istringstream items(removed);
    for (std::string item; items >> item;) {
      choices.push_back({std::u16string(1, static_cast<char16_t>(item[0])), std::nullopt});
      if (item.size() > 1) choices.back().version = version(item.substr(1));
    }
    std::string found;
    for (const auto& obstacle : removeFromStore(path("held.store"), choices).obstacles) {
      found += (found.empty() ? "" : " ") + printed(obstacle.dependent);
    }
    EXPECT_EQ(found, obstacles) << removed;
    make("expected", contentOf(TestRepository(obstacles.empty() ? left : held)), false);
    exportCatalogue(path("held.store"), path("after.json"));
    EXPECT_EQ(read("after.json"), read("expected.json")) << removed;
  }
}

/// What a store holds, and what is to go from it.
struct Removal {
  CatalogueContent before;
  std::vector<RemovalChoice> choices = {};

  bool goes(const Metamodel& metamodel) const {
    return std::any_of(choices.begin(), choices.end(), [&](const RemovalChoice& choice) {
      return choice.name == metamodel.name &&
             choice.version.value_or(metamodel.version) == metamodel.version;
    });
  }

  CatalogueContent after() const {
    CatalogueContent left = before;
    std::erase_if(left.metamodels, [&](const auto& each) { return goes(each.descriptor); });
    const CatalogueIndex index(left.metamodels, {});
    std::erase_if(left.hops, [&](const Hop& hop) {
      return index.metamodelsAt(hop.name, hop.from).empty() ||
             index.metamodelsAt(hop.name, hop.to).empty();
    });
    return left;
  }

  /// Whether something was there for the range, and nothing is any more.
  bool takesAll(const std::u16string& name, const VersionRange& range) const {
    return !CatalogueIndex(before.metamodels, {}).metamodelsIn(name, range).empty() &&
           CatalogueIndex(after().metamodels, {}).metamodelsIn(name, range).empty();
  }

  std::vector<std::string> obstacles() const {
    const CatalogueContent left = after();
    const CatalogueIndex index(left.metamodels, {});
    std::vector<std::string> result;
    for (const auto& [dependent, equivalent, note, notes, requirements] : left.metamodels) {
      for (std::size_t i = 0; i < dependent.dependencies.size(); ++i) {
        const auto& [name, range] = dependent.dependencies[i];
        if (!takesAll(name, range) && index.hasMetamodel(name)) continue;
        result.push_back(tarn::evolution::catalogue::describe({dependent, i}));
      }
    }
    return result;
  }

  bool takesWhatIsOptional() const {
    const CatalogueContent left = after();
    return std::any_of(left.metamodels.begin(), left.metamodels.end(), [&](const auto& each) {
      return std::any_of(each.requirements.begin(), each.requirements.end(), [&](const auto& one) {
        return takesAll(one.needed.name, one.needed.range);
      });
    });
  }
};

TEST_F(Store, RemovesWhateverNothingElseNeeds) {
  RandomRun run(60);
  const auto make = [](Random& random) {
    QuestionDraft draft = QuestionDraft::loose(random, random.upTo(4));
    draft.addRequirements(random, 80);
    return draft.text(random);
  };
  run.ask(make, [&](const std::string& text, Random& random) {
    Removal removal{contentOf(TestRepository(QuestionText(text).catalogue))};
    if (removal.before.metamodels.empty()) return;  // when it is made simpler
    for (std::size_t left = random.upTo(4); left > 0; --left) {
      const Metamodel& chosen = random.oneOf(removal.before.metamodels).descriptor;
      removal.choices.push_back({chosen.name, std::nullopt});
      if (random.chance(60)) removal.choices.back().version = chosen.version;
    }
    this->make("held", removal.before);
    const RemovalResult result = removeFromStore(path("held.store"), removal.choices);
    std::vector<std::string> obstacles;
    for (const RemovalObstacle& each : result.obstacles) {
      obstacles.push_back(tarn::evolution::catalogue::describe(each));
    }
    auto expected = removal.obstacles();
    EXPECT_EQ(result.obstacleCount, expected.size());
    expected.resize(std::min(expected.size(), listedObstacles));
    EXPECT_EQ(obstacles, expected);
    this->make("expected", expected.empty() ? removal.after() : removal.before, false);
    exportCatalogue(path("held.store"), path("after.json"));
    EXPECT_EQ(read("after.json"), read("expected.json"));
    EXPECT_EQ(PlainDatabase(path("held.store")).run("PRAGMA foreign_key_check"), "");
    run.count(expected.empty() ? "removed" : "refused");
    run.count("took what is optional", expected.empty() && removal.takesWhatIsOptional());
  });
  run.expectPercentages({{"removed", 10}, {"refused", 10}, {"took what is optional", 1}});
}

TEST_F(Store, StaysAsItWasOpenedWhileOthersChangeIt) {
  make("held", contentOf(TestRepository("A1 A2 B1:A1")));
  SqliteCatalogueRepository before(path("held.store"));
  removeFromStore(path("held.store"), {{u"A", version("2")}});
  EXPECT_EQ(SqliteCatalogueRepository(path("held.store")).listMetamodels(u"A").size(), 1);
  importCatalogue(path("held.json"), path("held.store"));
  EXPECT_EQ(SqliteCatalogueRepository(path("held.store")).listMetamodels(u"A").size(), 2);
  EXPECT_EQ(before.listMetamodels(u"A").size(), 2);
}

}  // namespace
}  // namespace test
