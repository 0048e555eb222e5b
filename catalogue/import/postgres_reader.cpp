// Folders of PostgreSQL extensions, as "Packaging Related Objects into an Extension" describes
// them: an extension is a metamodel, and its scripts tell its versions and hops by their names.
// What an extension requires, it requires in any version.
#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "catalogue/import/control_file.hpp"
#include "catalogue/import/readers.hpp"
#include "catalogue/import/table_rows.hpp"

namespace tarn::evolution::catalogue {

namespace {

namespace fs = std::filesystem;

constexpr const char* serverName = "postgresql";

/// "1.0" and "2.0" of NAME--1.0--2.0.sql; only the first of NAME--1.0.sql.
using ScriptVersions = std::vector<std::string>;

ScriptVersions splitVersions(const std::string& text) {
  ScriptVersions versions;
  for (std::size_t begin = 0;;) {
    const std::size_t end = text.find("--", begin);
    versions.push_back(text.substr(begin, end - begin));
    if (end == std::string::npos) return versions;
    begin = end + 2;
  }
}

/// Versions without a digit are no releases: objects that belong to no extension yet
/// ("unpackaged"), or a stage that many scripts share ("ANY").
bool isRelease(const std::string& version) {
  return std::any_of(version.begin(), version.end(),
                     [](unsigned char character) { return std::isdigit(character) != 0; });
}

struct Extension {
  fs::path control;
  std::vector<ScriptVersions> scripts;
  std::map<std::string, fs::path> versionControls;  // of single versions
};

class PostgresReader {
 public:
  explicit PostgresReader(const Reading& reading) : reading_(reading) {}

  ForeignCatalogue read() {
    for (const fs::path& source : reading_.sources) collectFiles(source);
    for (const auto& [name, extension] : extensions_) {
      reading_.log.attempt(
          [&, &name = name, &extension = extension] { readExtension(name, extension); });
    }
    if (!reading_.options.servers.empty()) readServers();
    return std::move(catalogue_);
  }

 private:
  void collectFiles(const fs::path& source) {
    std::vector<fs::path> scripts;
    for (const fs::path& path : filesOf(source, {".control", ".sql"})) {
      const std::string stem = path.stem().string();
      if (path.extension() == ".sql") {
        scripts.push_back(path);
      } else if (const std::size_t dashes = stem.find("--"); dashes == std::string::npos) {
        extensions_[stem].control = path;
      } else {
        extensions_[stem.substr(0, dashes)].versionControls[stem.substr(dashes + 2)] = path;
      }
    }
    for (const fs::path& script : scripts) {
      const std::string stem = script.stem().string();
      const std::size_t dashes = stem.find("--");
      if (dashes == std::string::npos) continue;
      const auto extension = extensions_.find(stem.substr(0, dashes));
      if (extension == extensions_.end()) continue;
      extension->second.scripts.push_back(splitVersions(stem.substr(dashes + 2)));
    }
  }

  void readExtension(const std::string& name, const Extension& extension) {
    if (extension.control.empty()) {
      const fs::path& single = extension.versionControls.begin()->second;
      SourcePlace(std::make_shared<const std::string>(single.string()), 0)
          .fail("there is no file " + name + ".control");
    }
    const ControlFile control = readControl(extension.control);
    ForeignPackage& package = catalogue_[name];
    addVersions(extension, control, package);
    addScriptHops(extension, package);
    if (package.versions().empty()) {
      catalogue_.erase(name);
      reading_.log.mention(control.place.error("the extension has no script NAME--VERSION.sql"));
      return;
    }
    for (ForeignVersion& version : package.versions()) {
      const auto own = extension.versionControls.find(version.text);
      if (own == extension.versionControls.end()) {
        addRequirements(control, version);
      } else {
        const ControlFile ofVersion = readControl(own->second);
        addRequirements(ofVersion.hasRequirements ? ofVersion : control, version);
      }
    }
  }

  ControlFile readControl(const fs::path& path) const {
    SourceFile file(path, reading_.advance);
    return readControlFile(file);
  }

  static void addVersions(const Extension& extension, const ControlFile& control,
                          ForeignPackage& package) {
    std::set<std::string> versions;
    for (const ScriptVersions& script : extension.scripts) {
      // PostgreSQL takes no notice of names with a third version.
      if (script.size() > 2) continue;
      for (const std::string& version : script) {
        if (isRelease(version)) versions.insert(version);
      }
    }
    for (const std::string& version : versions) {
      // Extensions know no pre-releases: "1.4-1" mends "1.4".
      FullVersion& order = package.addVersion(version, control.place).order;
      if (order.isPrerelease() && isRelease(order.identifiers.front())) order.phase = 1;
    }
  }

  /// Those of update scripts. Two scripts that meet where there is no release are one hop.
  static void addScriptHops(const Extension& extension, ForeignPackage& package) {
    std::map<std::string, std::set<std::string>> sources;  // of scripts to no release
    for (const ScriptVersions& script : extension.scripts) {
      if (script.size() == 2 && isRelease(script[0]) && !isRelease(script[1])) {
        sources[script[1]].insert(script[0]);
      }
    }
    const auto add = [&](const std::string& from, const std::string& to) {
      package.addHop(*package.find(from), *package.find(to), false);
    };
    for (const ScriptVersions& script : extension.scripts) {
      if (script.size() != 2 || !isRelease(script[1])) continue;
      if (isRelease(script[0])) {
        add(script[0], script[1]);
      } else {
        for (const std::string& from : sources[script[0]]) add(from, script[1]);
      }
    }
  }

  static void addRequirements(const ControlFile& control, ForeignVersion& version) {
    for (const std::string& name : control.required) {
      version.dependencies.push_back(
          {name, ForeignRange::everything(), "any version", control.place});
    }
  }

  /// Reads which versions of extensions run on which versions of the server: rows of the columns
  /// server, extension and versions, which is a range. An extension that no row names runs on all.
  void readServers() {
    SourceFile file(reading_.options.servers, reading_.advance);
    std::optional<TableHead> head;
    std::map<std::string, std::map<std::string, std::vector<ForeignRange>>> rangesOn;
    ForeignPackage servers;
    readTableRows(file, [&](const TableRow& row) {
      if (!head) {
        head.emplace(row, file);
        return;
      }
      reading_.log.attempt([&] {
        const SourcePlace place = file.place(row.line);
        const std::string server = head->neededCell(row, "server", file);
        const std::string extension = head->neededCell(row, "extension", file);
        if (!catalogue_.contains(extension)) place.fail("there is no extension " + extension);
        if (!servers.find(server)) servers.addVersion(server, place);
        rangesOn[extension][server].push_back(place.orFail(
            [&] { return parseForeignRange(head->cell(row, "versions"), RangeGrammar::Npm); }));
      });
    });
    if (servers.versions().empty()) file.place().fail("the table has no rows");
    for (const auto& [extension, ranges] : rangesOn) addServers(extension, ranges, file.place(1));
    addServerHops(servers);
    catalogue_[serverName] = std::move(servers);
  }

  void addServers(const std::string& extension,
                  const std::map<std::string, std::vector<ForeignRange>>& ranges,
                  const SourcePlace& place) {
    for (ForeignVersion& version : catalogue_[extension].versions()) {
      std::vector<std::string> servers;
      for (const auto& [server, each] : ranges) {
        if (std::any_of(each.begin(), each.end(), [&](const ForeignRange& range) {
              return range.matches(version.text, version.order);
            })) {
          servers.push_back(server);
        }
      }
      std::string text;
      for (const std::string& server : servers) text += (text.empty() ? "" : " || ") + server;
      version.dependencies.push_back({serverName, ForeignRange::versions(servers), text, place});
    }
  }

  /// A server can be replaced by any newer one.
  static void addServerHops(ForeignPackage& servers) {
    const std::vector<ForeignVersion>& versions = servers.versions();
    for (std::size_t from = 0; from < versions.size(); ++from) {
      for (std::size_t to = 0; to < versions.size(); ++to) {
        if (comparePrecedence(versions[from].order, versions[to].order) < 0) {
          servers.addHop(from, to, false);
        }
      }
    }
  }

  const Reading& reading_;
  ForeignCatalogue catalogue_;
  std::map<std::string, Extension> extensions_;
};

}  // namespace

ForeignCatalogue readPostgresExtensions(const Reading& reading) {
  return PostgresReader(reading).read();
}

}  // namespace tarn::evolution::catalogue
