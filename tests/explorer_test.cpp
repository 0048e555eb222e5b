// The page to look around in a catalogue: what it holds, held against the repository itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <sstream>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/explorer/explorer_answers.hpp"
#include "catalogue/explorer/explorer_html.hpp"
#include "catalogue/range_union.hpp"
#include "platform/text.hpp"
#include "support/evopath_program.hpp"
#include "support/random_question.hpp"
#include "support/store_folder.hpp"
#include "support/test_question.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;
using fl::i18n::ustring_to_utf8;
using nlohmann::json;

std::size_t occurrencesOf(const std::string& part, const std::string& text) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

/// The rows of a page, in which nothing but the page's own elements may begin or end.
json rowsOf(const std::string& page) {
  EXPECT_EQ(occurrencesOf("<script", page), 2U);
  EXPECT_EQ(occurrencesOf("</script", page), 2U);
  EXPECT_EQ(occurrencesOf("<!--", page), 0U);
  for (const char* lineEnd : {"\u2028", "\u2029"}) EXPECT_EQ(occurrencesOf(lineEnd, page), 0U);
  const std::string before = "id=\"rows\">";
  const std::size_t begin = page.find(before) + before.size();
  return json::parse(page.substr(begin, page.find("</script>") - begin));
}

json explore(BrowsableRepository& repository, const ExplorerAnswers& answers,
             const std::string& name = "c.json") {
  std::ostringstream page;
  writeExplorerHtml(repository, name, answers, page);
  return rowsOf(page.str());
}

const std::u16string hostileParts[] = {u"",        u"</script><b>",    u"<!--<script>",  u"\u2028",
                                       u"a,b='\"", u"\u202E\n\t&amp;", u"日本\U0001F600"};

/// A text version without an equivalent becomes a pre-release, in this or that catalogue.
void makePrereleases(CatalogueContent& content) {
  std::set<std::pair<std::u16string, std::u16string>> texts;
  for (const auto& [descriptor, equivalent, note, notes, requirements] : content.metamodels) {
    if (!descriptor.version.isSemVer() && !equivalent)
      texts.emplace(descriptor.name, descriptor.version.getText());
  }
  const auto renamed = [&](const std::u16string& name, const std::u16string& text) {
    return texts.contains({name, text}) ? text.substr(text.size() - 1) + u".0.0-rc.1" : text;
  };
  const auto rename = [&](const std::u16string& name, VersionId& version) {
    if (!version.isSemVer()) version = renamed(name, version.getText());
  };
  for (CatalogueMetamodel& metamodel : content.metamodels) {
    rename(metamodel.descriptor.name, metamodel.descriptor.version);
    for (auto& [name, range] : metamodel.descriptor.dependencies) {
      if (!range.isSemVerRange()) range = renamed(name, range.getText());
    }
  }
  for (Hop& hop : content.hops) {
    rename(hop.name, hop.from);
    rename(hop.name, hop.to);
  }
}

/// Some hops to text versions name their equivalents instead.
void nameEquivalents(CatalogueContent& content, Random& random) {
  for (Hop& hop : content.hops) {
    for (const CatalogueMetamodel& metamodel : content.metamodels) {
      const bool isTarget = metamodel.equivalent && metamodel.descriptor.name == hop.name &&
                            metamodel.descriptor.version == hop.to;
      if (isTarget && random.chance(50)) hop.to = *metamodel.equivalent;
    }
  }
}

/// Needs that link nothing: optional ones, and ones that make cycles.
void addNeeds(CatalogueContent& content, Random& random) {
  for (CatalogueMetamodel& metamodel : content.metamodels) {
    if (!random.chance(15)) continue;
    const auto& other = content.metamodels[random.below(content.metamodels.size())].descriptor;
    const VersionRange range = between(random.upTo(2), 2 + random.upTo(2));
    if (random.chance(50)) {
      metamodel.requirements.push_back({{other.name, range, true}, random.oneOf(hostileParts)});
    } else if (other.name != metamodel.descriptor.name) {
      metamodel.descriptor.dependencies.emplace_back(other.name, range);
    }
  }
}

/// What a random catalogue holds, with unions, names and notes that pages may stumble over,
/// pre-releases, hops that name equivalents, and cycles.
CatalogueContent hostile(CatalogueContent content, Random& random) {
  if (random.chance(50)) makePrereleases(content);
  if (random.chance(50)) nameEquivalents(content, random);
  if (random.chance(50)) addNeeds(content, random);
  std::map<std::u16string, std::u16string> names;
  const auto rename = [&](std::u16string& name) {
    const auto [entry, isNew] = names.try_emplace(name, name);
    if (isNew) entry->second += random.oneOf(hostileParts);
    name = entry->second;
  };
  for (CatalogueMetamodel& metamodel : content.metamodels) {
    rename(metamodel.descriptor.name);
    if (random.chance(20)) metamodel.note = random.oneOf(hostileParts);
    for (auto& requirement : metamodel.requirements) rename(requirement.needed.name);
    for (auto& dependency : metamodel.descriptor.dependencies) {
      rename(dependency.name);
      if (random.chance(20)) dependency.range = unionOf({dependency.range, between(2, 3)});
      metamodel.dependencyNotes.push_back(random.chance(20) ? random.oneOf(hostileParts) : u"");
    }
  }
  for (Hop& hop : content.hops) {
    rename(hop.name);
    if (random.chance(20)) content.hopNotes.add(hop, random.oneOf(hostileParts));
  }
  return content;
}

void expectVersions(const json& rows, std::size_t number, BrowsableRepository& repository,
                    const std::vector<CatalogueMetamodel>& versions) {
  std::map<std::string, const CatalogueMetamodel*> byText;
  for (const auto& each : versions) byText[printed(each.descriptor.version)] = &each;
  ASSERT_EQ(rows["versions"][number].size(), byText.size());
  std::optional<Precedence> before;
  for (std::size_t i = 0; i < byText.size(); ++i) {
    const CatalogueMetamodel& own = *byText.at(rows["versions"][number][i]);
    EXPECT_LE(before, own.precedence());
    before = own.precedence();
    auto dependencies = own.descriptor.dependencies;
    json expected = json::array();
    for (const auto& [needed, note] : own.requirements) {
      const char* why = needed.isOptional ? "if it is there" : "not linked";
      expected.push_back({number, i, dependencies.size(), why});
      dependencies.emplace_back(needed.name, needed.range);
    }
    json unlinked = json::array();
    for (const json& each : rows["unlinked"]) {
      if (each[0] == number && each[1] == i) unlinked.push_back(each);
    }
    EXPECT_EQ(unlinked, expected);
    ASSERT_EQ(rows["needs"][number][i].size(), dependencies.size());
    for (std::size_t place = 0; place < dependencies.size(); ++place) {
      const json& range = rows["ranges"][rows["needs"][number][i][place].get<std::size_t>()];
      EXPECT_EQ(rows["names"][range[0].get<std::size_t>()],
                ustring_to_utf8(dependencies[place].name));
      std::set<std::string> shown;
      for (std::size_t run = 0; run < range[2].size(); run += 2) {
        for (std::size_t at = range[2][run]; at <= range[2][run + 1]; ++at) {
          shown.insert(rows["versions"][range[0].get<std::size_t>()][at]);
        }
      }
      std::vector<Metamodel> admitted;
      repository.findMetamodels(dependencies[place].name, dependencies[place].range, admitted);
      std::set<std::string> fitting;
      for (const Metamodel& each : admitted) fitting.insert(printed(each.version));
      EXPECT_EQ(shown, fitting) << range;
    }
  }
}

void expectHops(const json& rows, std::size_t number, BrowsableRepository& repository,
                const std::vector<Hop>& hops) {
  json shown = json::array();
  for (std::size_t i = 0; i < rows["hops"][number].size(); i += 3) {
    const auto versionAt = [&](std::size_t place) {
      return rows["versions"][number][rows["hops"][number][place].get<std::size_t>()];
    };
    shown.push_back({versionAt(i), versionAt(i + 1), rows["hops"][number][i + 2] == 1});
  }
  json expected = json::array();
  for (const Hop& hop : hops) {
    const auto target = repository.getMetamodel(hop.name, hop.to);
    expected.push_back({printed(hop.from), printed(target->version), hop.expensive});
  }
  EXPECT_EQ(shown, expected);
}

/// What is told of versions, dependencies and hops, in whatever order, as one list of texts.
std::multiset<std::string> notesOf(BrowsableRepository& repository) {
  std::multiset<std::string> notes;
  const auto add = [&](const std::u16string& note) {
    if (!note.empty()) notes.insert(ustring_to_utf8(note));
  };
  for (const auto& name : repository.listNames()) {
    for (const auto& each : repository.listMetamodels(name)) {
      add(each.note);
      for (const auto& note : each.dependencyNotes) add(note);
      for (const auto& requirement : each.requirements) add(requirement.note);
    }
    for (const auto& hop : repository.listHops(name)) add(repository.findHopNote(hop));
  }
  return notes;
}

std::unique_ptr<CatalogueRepository> randomCatalogue(const std::string& text, Random& random) {
  return std::make_unique<CatalogueRepository>(
      Catalogue(hostile(contentOf(TestRepository(QuestionText(text).catalogue)), random)));
}

std::string anyQuestion(Random& random) {
  return QuestionDraft::loose(random, random.upTo(5)).text(random);
}

TEST(Explorer, HoldsAllRowsOfRandomCatalogues) {
  RandomRun run(300);
  run.ask(anyQuestion, [&](const std::string& text, Random& random) {
    const auto repository = randomCatalogue(text, random);
    const json rows = explore(*repository, {}, "</script>\u2028" + text);
    EXPECT_EQ(rows["catalogue"], "</script>\u2028" + text);
    const auto names = repository->listNames();
    ASSERT_EQ(rows["names"].size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
      EXPECT_EQ(rows["names"][i], ustring_to_utf8(names[i]));
      expectVersions(rows, i, *repository, repository->listMetamodels(names[i]));
      expectHops(rows, i, *repository, repository->listHops(names[i]));
    }
    std::multiset<std::string> notes;
    for (const char* kind : {"versions", "needs", "hops"}) {
      for (const json& told : rows["notes"][kind]) notes.insert(told.back());
    }
    EXPECT_EQ(notes, notesOf(*repository));
    run.count("notes", !notes.empty());
    run.count("pre-releases", rows["versions"].dump().find("-rc.1") != std::string::npos);
    run.count("needs that do not link", !rows["unlinked"].empty());
    run.count("unions", rows["ranges"].dump().find(" or ") != std::string::npos);
    run.count("texts that stand for others", !rows["semver"].empty());
  });
  run.expectPercentages({{"notes", 10},
                         {"pre-releases", 2},
                         {"unions", 5},
                         {"texts that stand for others", 5},
                         {"needs that do not link", 5}});
}

/// For each metamodel with hops up the newest version that the path finder reaches from the oldest
/// that has one, or the newest that hops lead to, with whether that is reached.
std::map<std::string, std::tuple<std::string, std::string, bool>> farthest(
    BrowsableRepository& repository) {
  std::map<std::string, std::tuple<std::string, std::string, bool>> result;
  for (const auto& name : repository.listNames()) {
    auto versions = repository.listMetamodels(name);
    std::stable_sort(versions.begin(), versions.end(), [](const auto& left, const auto& right) {
      return left.precedence() < right.precedence();
    });
    const auto placeOf = [&](const VersionId& version) {
      const auto meant = repository.getMetamodel(name, version);
      return std::find_if(versions.begin(), versions.end(), [&](const auto& each) {
        return each.descriptor.version == meant->version;
      });
    };
    std::set<std::size_t> reached;
    const auto hops = repository.listHops(name);
    for (std::size_t i = 0; i < versions.size(); ++i) {
      for (const Hop& hop : hops) {
        if (hop.from != versions[i].descriptor.version || placeOf(hop.to) <= placeOf(hop.from))
          continue;
        if (reached.empty()) reached.insert(i);
        if (reached.contains(i))
          reached.insert(static_cast<std::size_t>(placeOf(hop.to) - versions.begin()));
      }
    }
    if (reached.empty()) continue;
    const VersionId oldest = versions[*reached.begin()].descriptor.version;
    std::tuple answer(printed(oldest), printed(versions[*reached.rbegin()].descriptor.version),
                      false);
    for (auto target = reached.rbegin(); std::next(target) != reached.rend(); ++target) {
      const VersionId& wanted = versions[*target].descriptor.version;
      const Question question{{{name, oldest}}, {{name, wanted}}};
      const std::string outcome =
          outcomeOf([&] { return repository.findPath(question.from, question.to); });
      if (outcome.find('>') == std::string::npos) continue;
      answer = {printed(oldest), printed(wanted), true};
      break;
    }
    result[ustring_to_utf8(name)] = answer;
  }
  return result;
}

TEST(Explorer, AnswersHowFarEachMetamodelCanBeBrought) {
  RandomRun run(300);
  run.ask(anyQuestion, [&](const std::string& text, Random& random) {
    const auto repository = randomCatalogue(text, random);
    const json rows = explore(*repository, answerCustomaryQuestions(*repository, {1}));
    std::map<std::string, std::tuple<std::string, std::string, bool>> shown;
    for (const json& question : rows["questions"]) {
      ASSERT_EQ(question["from"].size(), 1U);
      const std::size_t name = question["from"][0][0];
      const auto version = [&](const char* side) {
        return rows["versions"][name][question[side][0][1].get<std::size_t>()];
      };
      const json& answer = question["answer"];
      shown[rows["names"][name]] = {version("from"), version("to"), answer.value("found", false)};
      run.count("blocked", !answer.value("found", false));
      if (!answer.value("found", false)) continue;
      EXPECT_EQ(answer["question"]["to"], (json{{rows["names"][name], version("to")}}));
      EXPECT_FALSE(answer["steps"].empty());
    }
    EXPECT_EQ(shown, farthest(*repository));
    run.count("questions", !shown.empty());
  });
  run.expectPercentages({{"questions", 20}, {"blocked", 2}});
}

TEST(Explorer, BeginsWithTheCataloguesQuestionAndLeavesOutWhatIsTooMuch) {
  CatalogueContent content = contentOf(TestRepository("A1..3 B1..2:A[1,9)"));
  content.question = Question{selection("A1 B1"), selection("A3 B2")};
  CatalogueRepository repository{Catalogue(content)};
  const ExplorerAnswers all = answerCustomaryQuestions(repository, {2});
  ASSERT_EQ(all.answers.size(), 3U);
  EXPECT_EQ(all.answers[0].question->to, content.question->to);
  EXPECT_EQ(all.counts.found, 3U);
  const std::size_t most = all.answers[0].answer.size() + all.answers[2].answer.size();
  for (const std::size_t less : {0U, 1U}) {  // B's answer is shorter than A's
    const ExplorerAnswers some = answerCustomaryQuestions(repository, {1}, most - less);
    EXPECT_EQ(some.leftOut, 1 + less);
    EXPECT_EQ(explore(repository, some)["leftOut"], 1 + less);
    ASSERT_EQ(some.answers.size(), 2 - less);
    EXPECT_EQ(some.answers.back().answer, all.answers[less == 0 ? 2 : 0].answer);
  }
}

TEST(Explorer, LeavesOutHopsThatAreNeverOffered) {
  CatalogueContent content = contentOf(TestRepository("A1..3"));
  content.metamodels[1].descriptor.version = VersionId(u"two");
  content.metamodels[1].equivalent = SemVer{2, 0, 0};
  CatalogueRepository repository{Catalogue(content)};
  EXPECT_EQ(explore(repository, {})["hops"], json::parse("[[0, 1, 0]]"));  // not from 2.0.0
  EXPECT_EQ(answerCustomaryQuestions(repository, {1}).answers.at(0).question->to,
            (Selection{{u"A", VersionId(u"two")}}));
}

TEST(Explorer, TellsVersionsApartThatAreWrittenAlike) {
  CatalogueContent content = contentOf(TestRepository("A1 Atext A2..3"));
  content.metamodels[1].descriptor.version = VersionId(u"1.0.0");
  content.hops = {{u"A", VersionId(u"1.0.0"), v(3), false}, {u"A", v(1), v(2), false}};
  CatalogueRepository repository{Catalogue(content)};
  const json rows = explore(repository, {});
  EXPECT_EQ(rows["versions"], json::parse(R"([["1.0.0", "1.0.0", "2.0.0", "3.0.0"]])"));
  EXPECT_EQ(rows["hops"], json::parse("[[1, 3, 0, 0, 2, 0]]"));
}

using ExplorerCommand = EvopathProgram;

TEST_F(ExplorerCommand, WritesThePageAndTellsWhatIsWrong) {
  make("c", contentOf(TestRepository("A1 A2 A1>2!")), false);
  write("q.jsonl",
        "{\"from\": {\"A\": \"1.0\"}, \"to\": {\"A\": \"2.0.0\"}}\n\n"
        "{\"from\": {\"A\": \"1.0.0\"}, \"to\": {\"<A>\": \"2.0.0\"}}\nno question\n");
  EXPECT_EQ(run("explore c.json --output ok.html 2>&1"), std::pair(0, std::string()));
  EXPECT_EQ(rowsOf(read("ok.html"))["questions"].size(), 1U);
  EXPECT_EQ(run("explore c.json --output - 2>&1").second, read("ok.html"));
  EXPECT_EQ(
      rowsOf(runShell("cat c.json | " EVOPATH_PROGRAM " explore - --output -").second)["catalogue"],
      "CATALOGUE");

  EXPECT_EQ(
      run("explore c.json --questions q.jsonl --output q.html 2>&1"),
      std::pair(2,
                std::string(
                    "evopath: 1 found, 0 without a path, 0 open, 2 that cannot be asked\n"
                    "evopath: line 3: there is no metamodel \"<A>\" to reach; did you mean A?\n")));
  const json questions = rowsOf(read("q.html"))["questions"];
  ASSERT_EQ(questions.size(), 3U);
  EXPECT_EQ(questions[2]["answer"]["line"], 4);
  EXPECT_TRUE(questions[1]["to"].is_null());

  for (const auto& [arguments, reason] : std::map<std::string, std::string>{
           {"c.json", "--output is required"},
           {"no.json --output x.html", "no.json"},
           {"c.json --questions no.jsonl --output x.html", "no.jsonl: cannot be opened"},
           {"c.json --jobs 0 --output x.html", "--jobs 0: must be at least 1"},
           {"c.json --output no/x.html", "no/x.html"}}) {
    EXPECT_EQ(run("explore " + arguments + " 2>/dev/null"), std::pair(2, std::string()));
    EXPECT_NE(run("explore " + arguments + " 2>&1").second.find(reason), std::string::npos)
        << arguments;
  }
  EXPECT_FALSE(std::filesystem::exists(path("x.html")));
}

}  // namespace
}  // namespace test
