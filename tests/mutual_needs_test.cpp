// Catalogues whose versions depend on one another in cycles, or on others only if they are there.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/store/sqlite_catalogue_repository.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "support/evopath_program.hpp"
#include "support/legal_path.hpp"
#include "support/plain_database.hpp"
#include "support/random_question.hpp"
#include "support/store_folder.hpp"
#include "support/test_question.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

/// A catalogue in which all that is not optional is a dependency, and what its repository is to be:
/// a dependency links unless a walk from one of its candidates leads back.
class PlainSplit {
 public:
  explicit PlainSplit(const std::string& catalogue) : split(catalogue), content_(contentOf(split)) {
    for (std::size_t i = 0; i < split.metamodels.size(); ++i) {
      const auto& needed = content_.metamodels[i].descriptor.dependencies;
      auto& required =
          split.requirements[test::brief(split.metamodels[i].name, split.metamodels[i].version)];
      std::erase_if(required, [](const PeerRequirement& each) { return !each.isOptional; });
      auto& linking = split.metamodels[i].dependencies;
      linking.clear();
      for (const Dependency& dependency : needed) {
        if (leadsBack(dependency, i)) {
          required.push_back({dependency.name, dependency.range, false});
          anyLeadsBack = true;
        } else {
          linking.push_back(dependency);
        }
      }
    }
  }

  TestRepository split;
  bool anyLeadsBack = false;
  const CatalogueContent& content() const { return content_; }

 private:
  std::vector<std::size_t> candidatesOf(const Dependency& dependency) {
    std::vector<std::size_t> result;
    for (std::size_t i = 0; i < content_.metamodels.size(); ++i) {
      const Metamodel& candidate = content_.metamodels[i].descriptor;
      const bool isOne =
          candidate.name == dependency.name && split.includes(dependency.range, candidate);
      if (isOne) result.push_back(i);
    }
    return result;
  }

  bool leadsBack(const Dependency& dependency, std::size_t goal) {
    std::set<std::size_t> met;
    std::vector<std::size_t> waiting = candidatesOf(dependency);
    while (!waiting.empty()) {
      const std::size_t next = waiting.back();
      waiting.pop_back();
      if (next == goal) return true;
      if (!met.insert(next).second) continue;
      for (const Dependency& each : content_.metamodels[next].descriptor.dependencies) {
        const auto candidates = candidatesOf(each);
        waiting.insert(waiting.end(), candidates.begin(), candidates.end());
      }
    }
    return false;
  }

  const CatalogueContent content_;
};

class MutualNeeds : public StoreFolder {
 protected:
  static std::string answer(VersionRepository& repository, const QuestionText& question) {
    return outcomeOf([&] {
      Path path = repository.findPath(selection(question.from), selection(question.to));
      const auto standsBack = [](const BaselineHop& step) { return linksOwnName(step.to); };
      if (path && std::none_of(path->begin(), path->end(), standsBack)) {
        expectLegal(repository, *path);
      }
      return path;
    });
  }
};

TEST_F(MutualNeeds, AreRequirementsInMemoryAndInStores) {
  RandomRun run(150);
  const auto make = [](Random& random) {
    QuestionDraft draft = QuestionDraft::either(random, random.upTo(4));
    draft.addRequirements(random, 60);
    return draft.text(random);
  };
  run.ask(make, [&](const std::string& text, Random&) {
    const QuestionText question(text);
    if ((question.from + question.to).find(',') != std::string::npos) return;
    PlainSplit plain(question.catalogue);
    this->make("random", plain.content());
    CatalogueRepository memory{Catalogue(plain.content())};
    SqliteCatalogueRepository store(path("random.store"));
    const std::string expected = answer(plain.split, question);
    EXPECT_EQ(answer(memory, question), expected);
    EXPECT_EQ(answer(store, question), expected);
    for (const auto& name : memory.listNames()) {
      const auto listed = memory.listMetamodels(name);
      const auto stored = store.listMetamodels(name);
      ASSERT_EQ(stored.size(), listed.size());
      for (std::size_t i = 0; i < listed.size(); ++i) {
        EXPECT_EQ(stored[i].descriptor, listed[i].descriptor);
        EXPECT_EQ(plain.split.getMetamodel(name, listed[i].descriptor.version)->dependencies,
                  listed[i].descriptor.dependencies);
        EXPECT_EQ(stored[i].requirements.size(), listed[i].requirements.size());
      }
    }
    run.count("lead back", plain.anyLeadsBack);
    run.count("paths", expected.find("=>") != std::string::npos);
  });
  run.expectPercentages({{"lead back", 9}, {"paths", 8}});
}

TEST_F(MutualNeeds, StoresOfOlderFormsHaveOptionalOnesOnceChanged) {
  make("old", contentOf(TestRepository("A1..2 B1:A1")));
  const std::string whole = read("old.json");
  ASSERT_EQ(
      PlainDatabase(path("old.store"))
          .run("ALTER TABLE dependencies DROP COLUMN optional; PRAGMA user_version = 2; VACUUM"),
      "");
  exportCatalogue(path("old.store"), path("out.json"));
  EXPECT_EQ(read("out.json"), whole);
  const std::string more =
      R"({"name":"C","version":"1.0.0","dependencies":[{"name":"B","range":"1.0.0"},)"
      R"({"name":"A","range":["1.0.0","2.0.0"],"optional":true,"note":"why"},)"
      R"({"name":"absent","range":"1.0.0","optional":true}]})";
  write("more.json", R"({"metamodels": [)" + more + R"(], "hops": []})");
  addToStore(path("old.store"), path("more.json"));
  exportCatalogue(path("old.store"), path("out.json"));
  EXPECT_NE(read("out.json").find(more), std::string::npos) << read("out.json");
  SqliteCatalogueRepository repository(path("old.store"));
  EXPECT_EQ(repository.combine(selection("C1")).size(), 1U);
  EXPECT_EQ(repository.combine(selection("C1 A2")).size(), 0U);
}

TEST_F(MutualNeeds, KeepNothingFromBeingRemovedWhereTheyAreOptional) {
  make("held", contentOf(TestRepository("A1..2 C1 B1:%A1+C1 B2:%A2 D1:%C1")));
  const auto obstaclesTo = [&](const char16_t* name) {
    std::string found;
    for (const RemovalObstacle& each : removeFromStore(path("held.store"), {{name, {}}}).obstacles)
      found += tarn::evolution::catalogue::describe(each) + "\n";
    return found;
  };
  EXPECT_EQ(obstaclesTo(u"C"), "B@1.0.0 depends on C 1.0.0\n");
  EXPECT_EQ(obstaclesTo(u"A"), "");
  EXPECT_EQ(PlainDatabase(path("held.store")).run("PRAGMA foreign_key_check"), "");
  make("left", contentOf(TestRepository("C1 B1:%A1+C1 B2:%A2 D1:%C1")), false);
  exportCatalogue(path("held.store"), path("out.json"));
  EXPECT_EQ(read("out.json"), read("left.json"));
}

using MutualNeedsShown = EvopathProgram;

TEST_F(MutualNeedsShown, InPathsTiesAndDetails) {
  make("c", contentOf(TestRepository("A1:B1 A2:B2 B1:A1 B2:A2+%C2 C1 C2 A1>2 B1>2 C1>2")), false);
  const std::string path = run("path c.json --from A=1.0.0,B=1.0.0,C=1.0.0 --to A=2.0.0").second;
  for (const char* part :
       {"A 2.0.0 needs B 2.0.0, not 1.0.0", "B 2.0.0 needs C 2.0.0, not 1.0.0"}) {
    EXPECT_NE(path.find(part), std::string::npos) << path;
  }
  EXPECT_EQ(run("path c.json --from A=1.0.0,B=1.0.0 --to A=2.0.0 >/dev/null").first, 0);
  const std::string details = run("show c.json B").second;
  EXPECT_NE(details.find("A 2.0.0, not linked"), std::string::npos) << details;
  EXPECT_NE(details.find("C 2.0.0, if it is there"), std::string::npos) << details;
  const std::string written = run("show c.json B --json").second;
  EXPECT_NE(written.find("\"linked\": false"), std::string::npos) << written;
  EXPECT_NE(written.find("\"optional\": true"), std::string::npos) << written;
  const std::string page = run("explore c.json --output -").second;
  EXPECT_NE(page.find("\"not linked\"]"), std::string::npos);
  EXPECT_NE(page.find("\"if it is there\"]"), std::string::npos);
  EXPECT_EQ(run("check c.json >/dev/null").first, 0);
}

}  // namespace
}  // namespace test
