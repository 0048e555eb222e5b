// Catalogues of other programs, through the tool and through the library.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <tuple>

#include "catalogue/catalogue_index.hpp"
#include "catalogue/import/catalogue_assembly.hpp"
#include "catalogue/import/import.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "catalogue/utf16.hpp"
#include "support/evopath_program.hpp"
#include "support/import_samples.hpp"
#include "support/random_run.hpp"

namespace test {
namespace {

namespace fs = std::filesystem;
using namespace tarn::evolution::catalogue;
using namespace std::string_literals;

class Import : public testing::Test, protected EvopathProgram {
 protected:
  void writeFiles(const std::vector<std::pair<std::string, std::string>>& files) const {
    for (const auto& [name, text] : files) {
      const fs::path path = folder() / "in" / name;
      fs::create_directories(path.parent_path());
      std::ofstream(path, std::ios::binary) << text;
    }
  }

  const ImportSample& writeSample(const std::string& word) const {
    const auto& samples = importSamples();
    const auto sample = std::find_if(samples.begin(), samples.end(),
                                     [&](const auto& each) { return each.word == word; });
    writeFiles(sample->files);
    return *sample;
  }

  /// What the tool says of the sample, and what it makes of it: rows without marks and names of
  /// fields.
  std::string imported(const std::string& word, const std::string& options = "") const {
    writeSample(word);
    const auto [status, said] = run("import --from " + word + " in c.json " + options + " 2>&1");
    if (status != 0) return said;
    std::string rows = "\n" + read("c.json");
    const std::pair<const char*, const char*> shorter[] = {{"\"expensive\":false", "cheap"},
                                                           {"\"expensive\":true", "expensive"},
                                                           {"\"name\":", ""},
                                                           {"\"version\":", ""},
                                                           {"\"from\":", ""},
                                                           {"\"to\":", ""},
                                                           {"\"range\":", ""},
                                                           {"\"dependencies\":", ""},
                                                           {"\"", ""},
                                                           {"{", ""},
                                                           {"}", ""},
                                                           {"[]", "-"},
                                                           {"\nmetamodels:[\n", "\n"},
                                                           {"],\nhops:[\n", ";\n"},
                                                           {",\n", "\n"}};
    for (const auto& [text, with] : shorter) {
      for (std::size_t at = 0; (at = rows.find(text)) != std::string::npos;) {
        rows.replace(at, std::string(text).size(), with);
      }
    }
    rows.erase(rows.size() - 2, 1);  // the end of the list of hops
    return said + rows;
  }

  /// What the tool says of files that are at fault; the folder "in" begins empty.
  std::string said(const std::string& word, const std::string& name, const std::string& text,
                   const std::string& options = "") const {
    fs::remove_all(folder() / "in");
    writeFiles({{name, text}});
    return run("import --from " + word + " in x.json " + options + " 2>&1").second;
  }
};

TEST_F(Import, ReadsOperators) {
  EXPECT_EQ(imported("operators"), R"(Imported 8 versions of metamodels and 8 hops.

data,1.0.0,-,note:Use another one.
data,1.5.0,-,note:It loses rows.\nUse another one.
data,2.0.0,-,note:Use another one.
web,1.0.0,-
web,1.1.0,[data,1.0.0]
web,1.2.0,[data,[1.0.0,1.5.1]]
web,2.0.0-rc1,-
web,2.0.0,[data,2.0.0,note:needs data];
data,1.0.0,2.0.0,cheap
data,1.0.0,1.5.0,expensive
data,1.5.0,2.0.0,cheap
web,1.0.0,1.2.0,cheap
web,1.0.0,1.1.0,expensive,note:Gone.
web,1.1.0,1.2.0,cheap
web,1.2.0,2.0.0-rc1,cheap
web,2.0.0-rc1,2.0.0,cheap
)");
}

TEST_F(Import, ReadsNpmPackages) {
  EXPECT_EQ(imported("npm", "--engines"), R"(Imported 13 versions of metamodels and 14 hops.

@ours/plugin,1.0.0,[core,[0.9.0,0.10.0]]
@ours/plugin,1.1.0,[core,[0.9.0,1.2.0],node,[10.0.0,1000000000.0.0]]
@ours/plugin,2.0.0,[core,2.1.0,node,[0.0.0,0.0.0],optional:true]
@ours/plugin,2.1.0,[core,[1.1.0,1000000000.0.0],node,[12.0.0,1000000000.0.0],optional:true]
core,0.9.0,-
core,1.0.0,-
core,1.1.0,-
core,1.2.0,-,note:Broken.
core,2.0.0-rc.1,-
core,2.0.0,-
core,2.1.0,[@ours/plugin,[2.0.0,3.0.0]]
node,10.1.0,-
node,12.0.0,-;
@ours/plugin,1.0.0,2.1.0,cheap
@ours/plugin,1.0.0,1.1.0,cheap
@ours/plugin,1.1.0,2.1.0,cheap
@ours/plugin,2.0.0,2.1.0,cheap
core,0.9.0,2.1.0,cheap
core,0.9.0,1.1.0,cheap
core,1.0.0,2.1.0,cheap
core,1.0.0,1.1.0,cheap
core,1.1.0,2.1.0,cheap
core,1.1.0,1.2.0,expensive
core,1.2.0,2.1.0,cheap
core,2.0.0-rc.1,2.1.0,cheap
core,2.0.0,2.1.0,cheap
node,10.1.0,12.0.0,cheap
)");
}

TEST_F(Import, ReadsPostgresqlExtensions) {
  EXPECT_EQ(imported("postgresql", "--servers in/servers.csv"),
            R"(Imported 9 versions of metamodels and 6 hops.
Left out:
  in/empty.control: line 1: the extension has no script NAME--VERSION.sql

Odd-Name,1.0.0,-
base,3,semver:3.0.0,-
base,4,semver:4.0.0,-
geo,1.0.0,[postgresql,14.0.0]
geo,1.1.0,[base,[0.0.0,1000000000.0.0],Odd-Name,[0.0.0,1000000000.0.0],postgresql,[14.0.0,15.0.1]]
geo,1.1-1,semver:1.1.1,[base,[0.0.0,1000000000.0.0],Odd-Name,[0.0.0,1000000000.0.0],postgresql,[14.0.0,15.0.1]]
geo,2.0.0,[base,[0.0.0,1000000000.0.0],Odd-Name,[0.0.0,1000000000.0.0],postgresql,15.0.0]
postgresql,14,semver:14.0.0,-
postgresql,15,semver:15.0.0,-;
base,3,4,cheap
geo,1.0.0,2.0.0,cheap
geo,1.0.0,1.1.0,cheap
geo,1.1.0,1.1-1,cheap
geo,1.1-1,2.0.0,cheap
postgresql,14,15,cheap
)");
}

TEST_F(Import, ReadsUpdateGraphs) {
  EXPECT_EQ(imported("graph"), R"(Imported 4 versions of metamodels and 5 hops.

cluster,4.1.0,-
cluster,4.2.0-rc.1,-
cluster,4.2.0,-
cluster,4.3.0,-;
cluster,4.1.0,4.3.0,expensive,note:Risk: Disks fill up. (u)
cluster,4.1.0,4.2.0,cheap
cluster,4.1.0,4.2.0-rc.1,cheap
cluster,4.2.0-rc.1,4.2.0,cheap
cluster,4.2.0,4.3.0,cheap
)");
}

TEST_F(Import, ReadsRequiredStops) {
  EXPECT_EQ(imported("stops", "--hops minors"), R"(Imported 13 versions of metamodels and 16 hops.

forge,14.9.0,-
forge,14.10.5,-
forge,15.0.0,-
forge,15.0.5,-
forge,15.3.0,-
forge,15.4.2,-
forge,15.4.6,-,note:migrations
forge,15.9.1,-
forge,16.0.0-rc1,-
forge,17.0.2,-
list,1.2.0,-
list,1.5.3,-
list,2.0.0,-;
forge,14.9.0,15.0.5,cheap
forge,14.9.0,14.10.5,cheap
forge,14.10.5,15.0.5,cheap
forge,15.0.0,15.4.6,cheap
forge,15.0.0,15.3.0,cheap
forge,15.0.0,15.0.5,cheap
forge,15.0.5,15.4.6,cheap
forge,15.0.5,15.3.0,cheap
forge,15.3.0,15.4.6,cheap
forge,15.4.2,15.4.6,cheap
forge,15.4.6,17.0.2,expensive,note:large tables only
forge,15.4.6,15.9.1,cheap
forge,15.9.1,17.0.2,cheap
forge,16.0.0-rc1,17.0.2,cheap
list,1.2.0,1.5.3,cheap
list,1.5.3,2.0.0,cheap
)");
}

TEST_F(Import, ReadsTables) {
  EXPECT_EQ(imported("table"), R"(Imported 9 versions of metamodels and 3 hops.

draw,1.0.0,[shape,anyOf:[[1.0.0,2.0.0],[3.0.0,1000000000.0.0]],ink,spring]
draw,2.0.0,[shape,3.0.0,ink,anyOf:[[0.0.0,1000000000.0.0],spring,summer]]
ink,spring,-
ink,summer,-
loose,a,-
loose,b,-
shape,1.0.0,-
shape,3.0.0,-,note:third
shape,2023-01,semver:2.0.0,-;
draw,1.0.0,2.0.0,expensive
loose,a,b,cheap,note:told
shape,1.0.0,3.0.0,cheap
)");
}

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
  EXPECT_FALSE(fs::exists(folder() / "x.json"));
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

TEST_F(Import, JoinsSourcesAndSaysWhatChanges) {
  writeFiles({{"a.csv", "name,version,needs\nx,1.0.0,y\nx,2.0.0,y 1\ny,1.0.0,\n"},
              {"b.csv", "name,version,needs\nx,1.0.0,z\nz,1.0.0,\n"}});
  writeFiles({{"hops.csv", "name,from,to\nx,1.0.0,2.0.0\n"}});
  const auto show = [&](const std::string& names) { return run("show c.store " + names).second; };
  EXPECT_EQ(run("import --from table in/a.csv in/b.csv c.store 2>&1"),
            std::pair(2, "evopath: in/b.csv: line 2: the version 1.0.0 stands twice\n"s));
  EXPECT_EQ(run("import --from table --prefix west/ --prefix east/ in/a.csv in/b.csv c.store 2>&1"),
            std::pair(0, "Imported 5 versions of metamodels and 0 hops.\n"s));
  EXPECT_EQ(show("east/x=1.0.0"),
            "east/x\n  1.0.0\n    needs    east/z [0.0.0, 1000000000.0.0)\n"
            "    linked   with east/z 1.0.0\n");
  EXPECT_EQ(run("import --from table --prefix west/ in/a.csv in/hops.csv c.store --update 2>&1"),
            std::pair(0,
                      "Imported 5 versions of metamodels and 1 hop.\n"
                      "Added 0 versions of metamodels and 1 hop.\n"s));
  EXPECT_EQ(
      run("import --from table --prefix west/ in/a.csv in/hops.csv c.store --update 2>&1").second,
      "Imported 5 versions of metamodels and 1 hop.\nNothing has changed.\n");
  // What the catalogue holds already can be needed, and what needs it must find it.
  writeFiles({{"c.csv", "name,version,needs\nlate,1.0.0,east/x >=1\n"}});
  EXPECT_EQ(run("import --from table in/c.csv c.store --update 2>&1").first, 0);
  writeFiles({{"c.csv", "name,version\neast/z,spring\n"},
              {"d.csv", "name,from,to,expensive\nx,1.0.0,2.0.0,x\n"}});
  EXPECT_EQ(run("import --from table in/c.csv c.store --update 2>&1").second,
            "evopath: in/c.csv: line 2: east/x 1.0.0 needs east/z [0.0.0, 1000000000.0.0), of "
            "which no version is left\n");
  EXPECT_EQ(run("import --from table --prefix west/ in/a.csv in/d.csv c.store 2>&1").second,
            "Imported 3 versions of metamodels and 1 hop.\n"
            "Removed 3 versions of metamodels and 0 hops.\n"
            "Changed 0 versions of metamodels and 1 hop.\n");
  // Any other file is left alone.
  write("mine.json", "{\"mine\": 1}");
  write("mine.db", "mine");
  EXPECT_EQ(run("import --from table in/a.csv mine.json 2>&1"),
            std::pair(2, "evopath: mine.json: there is no field \"mine\" here\n"s));
  EXPECT_EQ(run("import --from table in/a.csv mine.db 2>&1").first, 2);
  EXPECT_EQ(read("mine.json") + read("mine.db"), "{\"mine\": 1}mine");
  EXPECT_EQ(run("import in/a.csv in/b.csv c.store 2>&1"),
            std::pair(2, "evopath: several files are joined only with --from\n"s));
}

// A change of a source: bytes, lines, or words that mean something to a reader.
std::string mutated(std::string text, Random& random) {
  static const std::vector<std::string> words{"\"\"",
                                              "null",
                                              "[]",
                                              "{}",
                                              "-1",
                                              "1e999",
                                              "99999999999999999999",
                                              "true",
                                              "\"1.0.0\"",
                                              "*",
                                              "||",
                                              ">=",
                                              "&a ",
                                              "*a",
                                              "<<: ",
                                              "---\n",
                                              "\n",
                                              "\t",
                                              "'",
                                              "\"",
                                              ",",
                                              ";",
                                              "--",
                                              ".",
                                              "-",
                                              "[",
                                              "{",
                                              ": ",
                                              "\xff",
                                              "\xEF\xBB\xBF",
                                              "18446744073709551615",
                                              "0",
                                              "1.0.0",
                                              "any of ",
                                              "~",
                                              "%",
                                              std::string(1, '\0'),
                                              std::string(300, '['),
                                              std::string(300, '{'),
                                              std::string(5000, 'a')};
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
    fs::remove_all(folder() / "in");
    auto files = samples[number].files;
    auto& [name, content] = random.oneOf(files);
    content = mutated(content, random);
    if (random.chance(10))
      name.insert(random.below(name.size() - 5), random.chance(50) ? "--" : "1.");
    writeFiles(files);
    ImportOptions options;
    options.format = samples[number].format;
    options.sources = {folder() / "in"};
    options.withEngines = random.chance(50);
    options.offeredHops = random.chance(50) ? OfferedHops::Minors : OfferedHops::All;
    if (random.chance(50)) options.servers = folder() / "in/servers.csv";
    for (const bool isLenient : {false, true}) {
      options.isLenient = isLenient;
      const fs::path catalogue = folder() / (random.chance(50) ? "g.json" : "g.store");
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
  run.ask(make, check);
  run.expectPercentages({{"made", 30}, {"refused", 10}});
}

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
