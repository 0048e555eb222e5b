// Sources of other programs that are at fault, through the tool and through the library.
#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/import/import.hpp"
#include "catalogue/open_catalogue.hpp"
#include "support/import_folder.hpp"
#include "support/items.hpp"
#include "support/random_run.hpp"

namespace test {
namespace {

namespace fs = std::filesystem;
using namespace tarn::evolution::catalogue;
using namespace std::string_literals;

using Import = ImportFolder;

/// What `word` is told of a file that is at fault in one place.
struct Fault {
  const char* word;
  const char* file;
  const char* text;
  const char* said;
};

TEST_F(Import, NamesFileAndPlaceOfWhatIsAtFault) {
  const std::string deep(150, '[');
  const Fault faults[] = {
      {"operators", "a.json", R"({"schema": "olm.package"})",
       "line 1: the field \"name\" is missing"},
      {"operators", "a.json", "\n{\"schema\": 7}", "line 2, /schema: must be a text, not a number"},
      {"operators", "a.json", "{}\n{\"schema\": \"x\"} 5",
       "line 1: the field \"schema\" is missing"},
      {"operators", "a.json", R"({"schema": "x"} 5)", "line 1: not JSON: expected { or ["},
      {"operators", "a.json", "", "line 1: not JSON: the file is empty"},
      {"operators", "a.json", deep.c_str(), "line 1: is nested too deep"},
      {"operators", "a.yaml", "schema: x\nb: [1,\n",
       "line 3: not YAML: while parsing a flow node, did not find expected node content"},
      {"operators", "a.yaml", "a: *b\n", "line 1: the alias refers to nothing before it"},
      {"operators", "a.yaml", "? [a]\n: b\n", "line 1: a key must be a text"},
      {"operators", "a.yaml", "<<: {a: b}\n",
       "line 1: keys that merge other values are not understood"},
      {"operators", "a.yaml", "schema: olm.channel\nschema: b\n", "line 2, /schema: stands twice"},
      {"operators", "a.yaml", deep.c_str(), "line 1: is nested too deep"},
      {"operators", "a.yaml",
       "schema: olm.channel\npackage: p\nname: c\nentries:\n- name: x\n  skipRange: '>>1'\n",
       R"(line 6, /entries/0/skipRange: ">>1" is no range: there is no version at "")"},
      {"operators", "a.yaml", "schema: olm.channel\npackage: p\nname: c\nentries: [{name: x}]\n",
       "line 4, /entries/0: there is no bundle x"},
      {"operators", "a.yaml", "schema: olm.bundle\npackage: p\nname: x\n",
       "line 1: the bundle has no property olm.package with its version"},
      {"operators", "a.yaml",
       "schema: olm.bundle\npackage: p\nname: x\nproperties:\n"
       "- {type: olm.package, value: {packageName: q, version: 1.0.0}}\n",
       "line 5, /properties/0/value/packageName: the bundle is one of the package p"},
      {"operators", "a.yaml",
       "schema: olm.bundle\npackage: p\nname: x\nproperties:\n"
       "- {type: olm.package, value: {packageName: p, version: 1.0.0}}\n"
       "- {type: olm.gvk.required, value: {group: g, version: v, kind: K}}\n",
       "line 6, /properties/1: no package provides the API g/v, K"},
      {"npm", "a.json",
       R"({"name": "a", "versions": {"1.0.0": {"peerDependencies": {"b/c": "^1"}}}})",
       "line 1, /versions/1.0.0/peerDependencies/b~1c: a needs \"b/c\", which no source has"},
      {"npm", "a.json",
       R"({"name": "a", "versions": {"1.0.0": {"peerDependencies": {"a": "^1 || 2"}}, "1.1.0": {"peerDependencies": {"a": "1.0.x"}}}})",
       "line 1, /versions/1.1.0/peerDependencies/a: a 1.1.0 needs a 1.0.x, which it is not itself"},
      {"npm", "a.json", R"({"name": "a", "versions": {"1.0.0": {"version": "2.0.0"}}})",
       "line 1, /versions/1.0.0: is the manifest of the version 2.0.0"},
      {"npm", "a.json", R"({"name": "a", "versions": {"1.0": {}, "1.0.0": {}}})",
       "line 1, /versions/1.0.0: the version 1.0.0 of a reads as the same one as 1.0"},
      {"npm", "a.json", R"({"name": "a", "versions": {"any of 1.0.0": {}}})",
       "line 1, /versions/any of 1.0.0: the version of a "
       "\"any of 1.0.0\" begins as no version may"},
      {"npm", "a.json",
       R"({"name": "a", "versions": {}} {"name": "b", "versions": {"1.0.0": )"
       R"({"peerDependencies": {"c": ">=2"}}}} {"name": "c", "versions": {"1.0.0": {}}})",
       "line 1, /versions/1.0.0/peerDependencies/c: b 1.0.0 needs c >=2, of which there is no "
       "version"},
      {"postgresql", "a.control", "a = 'b' c\n", "line 1: after the value the line must end"},
      {"postgresql", "a.control", "\nrequires = 'b,,c'\n",
       "line 2: there is an empty name in the list"},
      {"postgresql", "a.control", "comment = 'no end\n", "line 1: the quotation does not end"},
      {"postgresql", "a--1.control", "", ": there is no file a.control"},
      {"graph", "a.json", R"({"nodes": [{"version": "1"}], "edges": [[0, 1]]})",
       "line 1, /edges/0/1: there is no node 1"},
      {"graph", "a.json", R"({"nodes": [{"version": "1"}], "edges": [[0, -1]]})",
       "line 1, /edges/0/1: must be a whole number from 0 on"},
      {"stops", "a.yaml", "- 15.x\n",
       "line 1, /0: \"15.x\" is no stop: it must be a minor version or a release"},
      {"table", "a.csv", "name,versions\n",
       "line 1: the first row must name the columns: \"name\" and \"version\", or \"name\", "
       "\"from\" and \"to\""},
      {"table", "a.csv", "name,version\na,1.0,x\n",
       "line 2: the row has more cells than the first one"},
      {"table", "a.csv", "name,version\n\n,1.0\n", "line 3: the column \"name\" is empty here"},
      {"table", "a.csv", "name,version\na,\"1.0\n\n", "line 2: the quotation does not end"},
      {"table", "a.csv", "name,version,colour\n",
       "line 1: there is no column \"colour\" in such a table"},
      {"table", "a.csv", "name,from,to,expensive\na,1,2,perhaps\n",
       "line 2: \"perhaps\" is neither true nor false"},
      {"table", "a.csv", "name,version,note\na,1.0,\xff\n", "line 2: the note is not UTF-8"},
      {"graph", "a.json", R"({"nodes": [{"version": "1"}], "edges": [[0, 1e400]]})",
       "line 1: not JSON: number overflow parsing '1e400'"},
      {"table", "a.csv", "name,version\na,any of 1\n",
       "line 2: the version of a \"any of 1\" begins as no version may"},
      {"table", "b.txt", "", ": holds no file that ends in .csv, .tsv"},
  };
  for (const Fault& fault : faults) {
    const bool isOfFolder = std::string(fault.said).starts_with(": holds");
    EXPECT_EQ(
        said(fault.word, fault.file, fault.text),
        "evopath: in" +
            (isOfFolder ? "" : "/" + std::string(fault.file) + (fault.said[0] == ':' ? "" : ": ")) +
            fault.said + "\n")
        << fault.text;
  }
  EXPECT_FALSE(fs::exists(path("x.json")));
}

TEST_F(Import, LeavesOutAndListsWhatIsAtFault) {
  writeFiles({{"a.json", R"({"name": "a", "versions": {
    "1.0.0": {"peerDependencies": {"b": "1", "absent": "*"}},
    "2.0.0": {"peerDependencies": {"b": "7"}},
    "3.0.0": {"peerDependencies": {"b": "what"}},
    "4.0.0": {"peerDependencies": []}}})"},
              {"b.json", R"({"name": "b", "versions": {
    "1.0.0": {"peerDependencies": {"a": "1"}}, "2.0.0": {"peerDependencies": {"a": "2"}}}})"}});
  EXPECT_EQ(
      run("import --from npm --lenient in c.store 2>&1"),
      std::pair(
          0,
          "Imported 3 versions of metamodels and 1 hop.\n"
          "Left out:\n"
          "  in/a.json: line 5, /versions/4.0.0/peerDependencies: must be an object, not a list\n"
          "  in/a.json: line 4, /versions/3.0.0/peerDependencies/b: \"what\" is no range: there is "
          "no version at \"what\"\n"
          "  in/a.json: line 2, /versions/1.0.0/peerDependencies/absent: a needs \"absent\", which "
          "no source has\n"
          "  in/a.json: line 3, /versions/2.0.0/peerDependencies/b: a 2.0.0 needs b 7, of which "
          "there is no version\n"
          "  in/b.json: line 2, /versions/2.0.0/peerDependencies/a: b 2.0.0 needs a 2, of which "
          "there is no version\n"s));
  std::string rows = "name,version,needs\n";
  for (int i = 0; i < 25; ++i) rows += "a,1." + std::to_string(i) + ",x\n";
  EXPECT_EQ(said("table", "a.csv", rows, "--lenient | tail -1"),
            "  and 5 more; --list-all lists them\n");
  EXPECT_EQ(said("table", "a.csv", rows, "--lenient --list-all | wc -l"), "28\n");
}

// A change of a source: bytes, lines, or words that mean something to a reader.
std::string mutated(std::string text, Random& random) {
  static const std::vector<std::string> words = [] {
    auto all = itemsIn(R"("" null [] {} -1 1e999 99999999999999999999 true "1.0.0" * || >= *a ' ")"
                       " , ; -- . - [ { \xff \xEF\xBB\xBF 18446744073709551615 0 1.0.0 ~ %");
    all.insert(all.end(), {"&a ", "<<: ", "---\n", "\n", "\t", ": ", "any of ", "\0"s,
                           std::string(300, '['), std::string(300, '{'), std::string(5000, 'a')});
    return all;
  }();
  for (std::size_t count = random.upTo(4); count > 0; --count) {
    const std::size_t at = random.below(text.size() + 1);
    const std::size_t length = std::min(random.below(12), text.size() - at);
    switch (random.below(5)) {
      case 0:
        text.erase(at, length);
        break;
      case 1:
        text.insert(at, random.oneOf(words));
        break;
      case 2:
        text.replace(at, length, random.oneOf(words));
        break;
      case 3:
        text.insert(at, text.substr(random.below(text.size() + 1), random.below(200)));
        break;
      default:
        text.resize(at);
    }
  }
  return text;
}

TEST_F(Import, WithstandsGarbage) {
  const auto& samples = importSamples();
  RandomRun run(400);
  // A case is the number of a format, then the seed of the changes.
  const auto make = [&](Random& random) {
    return std::to_string(random.below(samples.size())) + " " + std::to_string(random() >> 1);
  };
  const auto check = [&](const std::string& text, Random& /*random*/) {
    std::istringstream words(text);
    std::size_t number = 0;
    std::uint64_t seed = 0;
    words >> number >> seed;
    Random random(seed);
    fs::remove_all(path("in"));
    auto files = samples[number].files;
    auto& [name, content] = random.oneOf(files);
    content = mutated(content, random);
    if (random.chance(10))
      name.insert(random.below(name.size() - 5), random.chance(50) ? "--" : "1.");
    writeFiles(files);
    ImportOptions options;
    options.format = samples[number].format;
    options.sources = {path("in")};
    options.withEngines = random.chance(50);
    options.offeredHops = random.chance(50) ? OfferedHops::Minors : OfferedHops::All;
    if (random.chance(50)) options.servers = path("in/servers.csv");
    for (const bool isLenient : {false, true}) {
      options.isLenient = isLenient;
      const fs::path catalogue = path(random.chance(50) ? "g.json" : "g.store");
      fs::remove(catalogue);
      try {
        const ImportReport report = importForeignCatalogue(options, catalogue);
        openCatalogue(catalogue);
        run.count("made");
        for (const CatalogueError& error : report.leftOut)
          EXPECT_NE(error.file(), "") << error.what();
      } catch (const CatalogueError& error) {
        run.count("refused");
        EXPECT_NE(error.file(), "") << error.what();
        EXPECT_FALSE(fs::exists(catalogue)) << error.what();
      }
    }
  };
  run.ask(make, check, [](const std::string&) { return std::vector<std::string>(); });
  run.expectPercentages({{"made", 30}, {"refused", 10}});
}

}  // namespace
}  // namespace test
