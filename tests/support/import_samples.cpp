#include "support/import_samples.hpp"

namespace test {

using tarn::evolution::catalogue::ImportFormat;

const std::vector<ImportSample>& importSamples() {
  static const std::vector<ImportSample> samples{
      {"operators",
       ImportFormat::Operators,
       {{"catalog.json",
         R"({"schema": "olm.package", "name": "web", "defaultChannel": "stable"}
{"schema": "olm.channel", "package": "web", "name": "stable", "entries": [
  {"name": "web.v1.0.0"},
  {"name": "web.v1.1.0", "replaces": "web.v1.0.0"},
  {"name": "web.v1.2.0", "replaces": "web.v1.0.0", "skips": ["web.v1.1.0"], "skipRange": ">=0.9.0 <1.2.0"},
  {"name": "web.v2.0.0-rc1", "replaces": "web.v1.2.0"},
  {"name": "web.v2.0.0", "replaces": "web.v2.0.0-rc1"}]}
{"schema": "olm.channel", "package": "web", "name": "old", "entries": [
  {"name": "web.v1.0.0", "replaces": "web.v0.9.0"}, {"name": "web.v1.1.0", "skipRange": "<1.1.0 || >3.x"}]}
{"schema": "olm.bundle", "package": "web", "name": "web.v1.0.0", "properties": [
  {"type": "olm.package", "value": {"packageName": "web", "version": "1.0.0"}}]}
{"schema": "olm.bundle", "package": "web", "name": "web.v1.1.0", "properties": [
  {"type": "olm.package", "value": {"packageName": "web", "version": "1.1.0"}},
  {"type": "olm.package.required", "value": {"packageName": "data", "versionRange": ">=1.0.0 !1.5.0"}},
  {"type": "olm.gvk.required", "value": {"group": "db", "kind": "Table", "version": "v1"}}]}
{"schema": "olm.bundle", "package": "web", "name": "web.v1.2.0", "properties": [
  {"type": "olm.package", "value": {"packageName": "web", "version": "1.2.0"}},
  {"type": "olm.gvk.required", "value": {"group": "db", "kind": "Table", "version": "v1"}},
  {"type": "olm.gvk.required", "value": {"group": "web", "kind": "Page", "version": "v1"}},
  {"type": "olm.gvk", "value": {"group": "web", "kind": "Page", "version": "v1"}}]}
{"schema": "olm.bundle", "package": "web", "name": "web.v2.0.0-rc1", "properties": [
  {"type": "olm.package", "value": {"packageName": "web", "version": "2.0.0-rc1"}}]}
{"schema": "olm.bundle", "package": "web", "name": "web.v2.0.0", "properties": [
  {"type": "olm.package", "value": {"packageName": "web", "version": "2.0.0"}},
  {"type": "olm.constraint", "value": {"failureMessage": "needs data", "all": {"constraints": [
    {"package": {"packageName": "data", "versionRange": "2.x"}},
    {"gvk": {"group": "db", "kind": "Table", "version": "v2"}}]}}}]}
)"},
        {"more/data.yaml", R"(---
schema: olm.package
name: data
---
schema: olm.channel
package: data
name: stable
entries:
  - &first {name: data.v1.0.0}
  - name: data.v1.5.0
    replaces: data.v1.0.0
  - name: data.v2.0.0
    replaces: data.v1.5.0
    skipRange: '>=1.0.0 <2.0.0'
---
schema: olm.bundle
package: data
name: data.v1.0.0
properties:
  - type: olm.package
    value: {packageName: data, version: 1.0.0}
  - &table1
    type: olm.gvk
    value: {group: db, kind: Table, version: v1}
---
schema: olm.bundle
package: data
name: data.v1.5.0
properties:
  - type: olm.package
    value: {packageName: data, version: 1.5.0}
  - type: olm.gvk
    value: &v1 {group: db, kind: Table, version: v1}
  - {type: unknown, value: [*v1, *v1]}
---
schema: olm.bundle
package: data
name: data.v2.0.0
properties:
  - type: olm.package
    value: {packageName: data, version: 2.0.0}
  - type: olm.gvk
    value: {group: db, kind: Table, version: v2}
---
schema: olm.deprecations
package: data
entries:
  - reference: {schema: olm.bundle, name: data.v1.5.0}
    message: It loses rows.
  - reference: {schema: olm.package}
    message: Use another one.
---
schema: olm.deprecations
package: web
entries: [{reference: {schema: olm.channel, name: old}, message: Gone.}]
---
schema: somebody.elses
)"}}},
      {"npm",
       ImportFormat::Npm,
       {{"core.json",
         R"({"name": "core", "readme": {"long": [1, {"x": 2.5}, null]}, "dist-tags": {"latest": "2.1.0"},
  "versions": {
    "0.9.0": {"version": "0.9.0"}, "1.0.0": {"version": "1.0.0"}, "1.1.0": {"version": "1.1.0"},
    "1.2.0": {"version": "1.2.0", "deprecated": "Broken."},
    "2.0.0-rc.1": {}, "2.0.0": {"deprecated": ""}, "2.1.0": {"deprecated": false,
              "peerDependencies": {"@ours/plugin": "^2.0.0"}}}})"},
        {"plugin.json", R"({"name": "@ours/plugin", "versions": {
    "1.0.0": {"peerDependencies": {"core": "^0.9.0"}},
    "1.1.0": {"peerDependencies": {"core": "0.9 - 1.1"}, "engines": {"node": ">=10"}},
    "2.0.0": {"peerDependencies": {"core": "latest", "absent": "*", "node": "9"},
              "peerDependenciesMeta": {"absent": {"optional": true}, "node": {"optional": true}},
              "engines": ["old"]},
    "2.1.0": {"peerDependencies": {"core": "^1.1.0 || ^2.0.0-rc.0 || >=2.1", "node": ">=12"},
              "peerDependenciesMeta": {"node": {"optional": true}}}}})"},
        {"node.json",
         R"([{"name": "node", "version": "10.1.0", "versions": ["10.1.0"], "dependencies": {}},
 {"name": "node", "version": "12.0.0"}])"}}},
      {"postgresql",
       ImportFormat::Postgresql,
       {{"geo.control",
         "# geometry\ndefault_version = '2.0'\nrequires = 'base, \"Odd-Name\"'  # both\n"},
        {"geo--1.0.sql", ""},
        {"geo--1.0--1.1.sql", ""},
        {"geo--1.1--1.1-1.sql", ""},
        {"geo--1.1-1--2.0.sql", ""},
        {"geo--1.0--ANY.sql", ""},
        {"geo--ANY--2.0.sql", ""},
        {"geo--unpackaged--1.0.sql", ""},
        {"geo--A--1--2.sql", ""},
        {"geo--1.0.control", "requires = ''\n"},
        {"base.control", "comment = 'it''s \\' all'\nrelocatable = true\n"},
        {"base--3.sql", ""},
        {"base--3--4.sql", ""},
        {"Odd-Name.control", "default_version 1.0\n"},
        {"Odd-Name--1.0.sql", ""},
        {"empty.control", ""},
        {"servers.csv", "server,extension,versions\n14,geo,1.x\n15,geo,1.1 - 2\n"}}},
      {"graph",
       ImportFormat::UpdateGraph,
       {{"cluster.json",
         R"({"version": 1, "nodes": [{"version": "4.1.0", "payload": "p", "metadata": {}},
   {"version": "4.2.0-rc.1"}, {"version": "4.2.0"}, {"version": "4.3.0"}],
 "edges": [[0, 1], [0, 2], [1, 2], [2, 3], [0, 3]],
 "conditionalEdges": [{"edges": [{"from": "4.1.0", "to": "4.3.0"}],
   "risks": [{"url": "u", "name": "Risk", "message": "Disks fill up.", "matchingRules": [{"type": "Always"}]}]}]})"}}},
      {"stops",
       ImportFormat::Stops,
       {{"forge.yaml", R"(name: forge
versions: [14.9.0, 14.10.5, '15.0.0', 15.0.5, 15.3.0, 15.4.2, 15.4.6, 15.9.1, 16.0.0-rc1]
stops:
  - 15.0
  - version: 15.4.6
    note: migrations
  - {major: 15, minor: 9, comments: large tables only, conditional: true}
  - 17.0.2
)"},
        {"list.json",
         R"([{"major": 1, "minor": 2}, {"major": 1, "minor": 5, "patch": 3}, "2.0"])"}}},
      {"table",
       ImportFormat::Table,
       {{"versions.csv",
         "\xEF\xBB\xBFName;Version;needs;Needs;equivalent;note\r\n"
         "draw;1.0.0;shape >=1 <2 || >=3; ink spring ;\r\n\r\n"
         "draw;2.0.0;\"shape 3.0.0 ; ink\";;\r\n"
         "shape;1.0.0\r\nshape;3.0;;;;third\r\nshape;2023-01;;;2.0.0\r\n\"ink\";spring;;;\r\nink;"
         "summer;;"
         ";"},
        {"hops.tsv",
         "name\tfrom\tto\texpensive\tnote\ndraw\t1.0.0\t2.0.0\tyes\nshape\t1.0.0\t3.0\t\n"
         "loose\ta\tb\t0\ttold\n"}}},
  };
  return samples;
}

}  // namespace test
