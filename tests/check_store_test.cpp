#include <algorithm>
#include <filesystem>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/check/check.hpp"
#include "catalogue/check/open_draft.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "support/catalogue_json.hpp"
#include "support/plain_database.hpp"
#include "support/store_folder.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

/// In a folder that holds "small.json" and, made of it, "small.store".
class StoreCheck : public StoreFolder {
 protected:
  StoreCheck() {
    CatalogueContent content =
        contentOf(TestRepository("A1..3 Ax~1.5 B1:A[1,3)+C1 B2:Ax C1..2 B1>2 Ax>2"));
    content.question = Question{selection("A1 B1"), selection("B2")};
    make("small", content);
  }

  /// What is found after these statements, run without regard to what the schema demands.
  std::string findingsAfter(const std::string& statements) const {
    std::filesystem::remove(store_);
    importCatalogue(path("small.json"), store_);
    const std::string outcome =
        PlainDatabase(store_).run("PRAGMA ignore_check_constraints = ON; " + statements);
    EXPECT_EQ(outcome, "");
    std::string result;
    for (const Finding& finding : check(readDraft(store_))) {
      if (severityOf(finding.code) == Severity::Note) continue;
      result += identifierOf(finding.code) + " " + finding.place.text + "\n";
    }
    return result;
  }

  const std::filesystem::path store_ = path("small.store");
};

TEST_F(StoreCheck, FindsInAStoreWhatItFindsInJson) {
  importCatalogue(CATALOGUE_FILE, store_);
  const std::vector<Finding> inJson = check(readDraft(CATALOGUE_FILE));
  const std::vector<Finding> inStore = check(readDraft(store_));
  ASSERT_EQ(inStore.size(), inJson.size());
  for (std::size_t i = 0; i < inJson.size(); ++i) {
    EXPECT_EQ(inStore[i].code, inJson[i].code);
    EXPECT_EQ(inStore[i].message, inJson[i].message);
    EXPECT_EQ(inStore[i].related.size(), inJson[i].related.size());
  }
}

TEST_F(StoreCheck, FindsRowsThatCannotStandThere) {
  const std::string seven = "X'" + std::string(48, '7') + "'";
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"UPDATE metamodels SET name = 99 WHERE position = 6",
       "unsatisfied-dependency table dependencies, metamodel 4, ordinal 1\n"
       "orphan-row table metamodels, row 6, column name\n"
       "unknown-hop-version table hops, row 2, column source\n"
       "inconsistent-question table question_versions, side from\n"},
      {"DELETE FROM metamodels WHERE position = 5; DELETE FROM hops",
       "orphan-row table dependencies, metamodel 5, ordinal 0\n"
       "unknown-question-version table question_versions, side to, name B\n"},
      {"UPDATE names SET name = '' WHERE name = 'C'",
       "bad-name table dependencies, metamodel 4, ordinal 1, column name\n"
       "bad-name table metamodels, row 6, column name\n"
       "bad-name table metamodels, row 7, column name\n"
       "bad-name table hops, row 2, column name\n"},
      {"UPDATE metamodels SET equivalent = " + seven + " WHERE position = 7",
       "bad-equivalent table metamodels, row 7, column equivalent\n"},
      {"UPDATE dependencies SET lower = " + seven + " WHERE ordinal = 0 AND metamodel = 4",
       "bad-range table dependencies, metamodel 4, ordinal 0\n"},
      {"UPDATE hops SET target = 'nowhere' WHERE position = 3",
       "unknown-hop-version table hops, row 3, column target\n"},
      {"INSERT INTO metamodels (position, name, version) SELECT 90, name, version FROM metamodels "
       "WHERE position = 3",
       "duplicate-version table metamodels, row 90\n"},
      {"INSERT INTO hops SELECT position + 90, name, target, source, expensive, note FROM hops; "
       "DELETE "
       "FROM "
       "question",
       ""},
      {"UPDATE dependencies SET note = CAST(x'ff' AS TEXT) WHERE ordinal = 0 AND metamodel = 4",
       "damaged-store table dependencies, metamodel 4, ordinal 0, column note\n"},
      {"UPDATE hops SET note = CAST(x'ff' AS TEXT) WHERE position = 0",
       "damaged-store table hops, row 0, column note\n"},
      {"UPDATE hops SET source = 7 WHERE position = 0",
       "bad-version table hops, row 0, column source\n"},
      {"UPDATE hops SET expensive = 2 WHERE position = 1; UPDATE dependencies SET version = '9' "
       "WHERE metamodel = 4 AND ordinal = 1; INSERT INTO question VALUES (1); "
       "UPDATE question_versions SET side = 'by' WHERE side = 'to'",
       "bad-range table dependencies, metamodel 4, ordinal 1\n"
       "damaged-store table hops, row 1, column expensive\n"
       "damaged-store table question\n"
       "damaged-store table question_versions\n"
       "empty-question table question_versions, side to\n"},
  };
  for (const auto& [statements, expected] : cases) {
    EXPECT_EQ(findingsAfter(statements), expected) << statements;
  }
}

TEST_F(StoreCheck, SurvivesDamageAnywhere) {
  const std::string intact = readFile(store_);
  int found = 0;
  for (std::size_t at = 100; at < intact.size(); at += 331) {
    std::string damaged = intact;
    std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(at), 8, '\xa5');
    write("small.store", damaged);
    try {
      found += hasError(check(readDraft(store_))) ? 1 : 0;
    } catch (const CatalogueError&) {
      ++found;
    }
  }
  EXPECT_GT(found, 10);
}

}  // namespace
}  // namespace test
