// What catalogues tell of versions, hops and dependencies: that older stores do without, and where
// it is shown.
#include <gtest/gtest.h>

#include <sstream>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/explanation/explanation.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/store/sqlite_catalogue_repository.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "support/evopath_program.hpp"
#include "support/plain_database.hpp"
#include "support/store_folder.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;
using namespace std::string_literals;

using Notes = StoreFolder;

TEST_F(Notes, StoresOfTheFirstFormAreReadAsTheyAreAndHaveNotesOnceChanged) {
  TestRepository held("A1 A2 B1:A[1,3) A1>2");
  make("old", contentOf(held));
  const std::string whole = read("old.json");
  ASSERT_EQ(PlainDatabase(path("old.store"))
                .run("ALTER TABLE metamodels DROP COLUMN note; ALTER TABLE hops DROP COLUMN note;"
                     "ALTER TABLE dependencies DROP COLUMN note;"
                     "ALTER TABLE dependencies DROP COLUMN optional;"
                     "PRAGMA user_version = 1; VACUUM"),
            "");
  const std::string before = read("old.store");
  {
    SqliteCatalogueRepository repository(path("old.store"));
    EXPECT_EQ(repository.combine(selection("B1")).size(), 2);
    EXPECT_EQ(repository.findVersionNote(u"A", SemVer{1, 0, 0}), u"");
    EXPECT_EQ(repository.findHopNote(held.hops.front()), u"");
  }
  exportCatalogue(path("old.store"), path("out.json"));
  EXPECT_EQ(read("out.json"), whole);
  EXPECT_EQ(read("old.store"), before);

  write("more.json", R"({"metamodels": [{"name": "C", "version": "1.0.0", "note": "late",
    "dependencies": [{"name": "A", "range": "1.0.0", "note": "why"}]}],
    "hops": [{"name": "A", "from": "2.0.0", "to": "1.0.0", "expensive": true, "note": "back"}]})");
  addToStore(path("old.store"), path("more.json"));
  SqliteCatalogueRepository repository(path("old.store"));
  EXPECT_EQ(repository.findVersionNote(u"C", SemVer{1, 0, 0}), u"late");
  EXPECT_EQ(repository.listMetamodels(u"C").front().noteOfDependency(0), u"why");
  EXPECT_EQ(repository.findHopNote({u"A", SemVer{2, 0, 0}, SemVer{1, 0, 0}, true}), u"back");
  EXPECT_EQ(repository.findHopNote(held.hops.front()), u"");
}

TEST_F(Notes, OfAnExplanationComeInTheOrderOfNamesAndVersions) {
  std::istringstream text(R"({"metamodels": [
    {"name": "B", "version": "1.0.0", "dependencies": []},
    {"name": "B", "version": "2.0.0", "dependencies": [], "note": "B"},
    {"name": "AA", "version": "low", "semver": "8.0.0", "dependencies": []},
    {"name": "AA", "version": "top", "semver": "11.0.0", "dependencies": [], "note": "top"},
    {"name": "AA", "version": "middle", "semver": "10.0.0", "dependencies": [], "note": "middle"}],
   "hops": [{"name": "B", "from": "1.0.0", "to": "2.0.0", "expensive": false, "note": "B's hop"},
            {"name": "AA", "from": "low", "to": "top", "expensive": false, "note": "to top"},
            {"name": "AA", "from": "top", "to": "middle", "expensive": false, "note": "down"}]})");
  CatalogueRepository repository(readJsonCatalogue(text));
  const Explanation explanation =
      explain(repository, {{{u"AA", VersionId(u"low")}, {u"B", SemVer{1, 0, 0}}},
                           {{u"AA", VersionId(u"middle")}, {u"B", SemVer{2, 0, 0}}}});
  std::vector<std::u16string> notes;
  for (const ExplanationNote& each : explanation.notes) notes.push_back(each.note);
  EXPECT_EQ(notes,
            (std::vector<std::u16string>{u"to top", u"middle", u"top", u"down", u"B's hop", u"B"}));
}

using NotesShown = EvopathProgram;

TEST_F(NotesShown, WhereverWhatTheyAreOfIs) {
  write("c.json", R"({"metamodels": [
    {"name": "A", "version": "1.0.0", "dependencies": []},
    {"name": "A", "version": "2.0.0", "dependencies": [
      {"name": "B", "range": "1.0.0", "note": "for <b>"}], "note": "leaks \"much\"\n see x"},
    {"name": "B", "version": "1.0.0", "dependencies": [], "note": "brings a \u001b"},
    {"name": "B", "version": "2.0.0", "dependencies": []}],
   "hops": [{"name": "A", "from": "1.0.0", "to": "2.0.0", "expensive": true, "note": "slow"}]})");
  ASSERT_EQ(run("import c.json c.store").first, 0);
  const std::string told = "A from 1.0.0 to 2.0.0, expensive: slow; leaks &quot;much&quot; see x";
  const std::string way = " --from A=1.0.0 --to A=2.0.0";
  const std::string off = " --from A=1.0.0,B=2.0.0 --to A=2.0.0,B=2.0.0";
  const std::pair<std::string, std::string> cases[] = {
      {"path c.store" + way,
       "  A  1.0.0 -> 2.0.0  expensive\n     slow\n     leaks \"much\"\n     see x\n"
       "  B         + 1.0.0\n     brings a \\u{1b}\n"},
      {"steps c.store --at A=1.0.0", "expensive\n     slow\n     leaks"},
      {"path c.store --format json" + way, R"("notes": [
            "slow",
            "leaks \"much\"\n see x"
          ])"},
      {"path c.store --format dot" + way, R"(label="expensive: slow; leaks \"much\" see x")"},
      {"path c.store --format mermaid" + way, R"( ==>|"expensive: slow#59; leaks #quot;much)"},
      {"path c.store --format svg" + way, "<title>Step 1: " + told + "</title>"},
      {"path c.store --format svg" + way,
       "B enters at 1.0.0, brought in by a link: brings a \\u{1b}"},
      {"path c.store --format html" + way,
       R"(<p dir="auto">slow</p><p dir="auto">leaks &quot;much&quot;<br>see x</p>)"},
      {"show c.store A",
       "  2.0.0\n    leaks \"much\"\n    see x\n    needs    B 1.0.0\n               for <b>\n"
       "    from     1.0.0  expensive\n               slow\n"},
      {"show c.store A --json", R"("note": "for <b>")"},
      {"graph c.store --format dot", R"(label="expensive: slow", tooltip="slow")"},
      {"graph c.store --format mermaid", R"(-.->|"for #lt;b#gt;"|)"},
      {"explain c.store" + off,
       "What the catalogue tells of these:\n  A 2.0.0:\n    leaks \"much\"\n    see x\n"},
      {"explain c.store --json" + way, R"("to": "2.0.0",
      "note": "slow")"},
      {"explain c.store" + off, "  A 2.0.0 needs B:\n    for <b>\n"},
      {"explain c.store --json" + off, R"("needs": "B",
      "note": "for <b>")"},
  };
  for (const auto& [arguments, expected] : cases) {
    const std::string shown = run(arguments + " 2>&1").second;
    EXPECT_NE(shown.find(expected), std::string::npos) << arguments << "\n" << shown;
  }
}

}  // namespace
}  // namespace test
