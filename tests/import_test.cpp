// What evopath makes of catalogues of other programs.
#include <string>
#include <utility>

#include "support/import_folder.hpp"

namespace test {
namespace {

using namespace std::string_literals;

using Import = ImportFolder;

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

TEST_F(Import, CountsAHopOnceHoweverOftenItStands) {
  writeFiles({{"a.csv", "name,version\nx,1.0.0\n"}});
  make("c", contentOf(TestRepository("y1..2 y1>2")), false);
  for (const char* changed :
       {"Added 1 version of a metamodel and 0 hops.\n", "Nothing has changed.\n"}) {
    EXPECT_EQ(run("import --from table in/a.csv c.json --update 2>&1").second,
              "Imported 3 versions of metamodels and 2 hops.\n"s + changed);
  }
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

}  // namespace
}  // namespace test
