// File-based catalogues: a package is a metamodel, a bundle a version of it. Channels tell the
// hops, properties of bundles what they need. All documents are read before anything is made of
// them, for they come in any order.
#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

#include "catalogue/import/documents.hpp"
#include "catalogue/import/readers.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// An API that bundles provide or need: group, kind and version.
using ApiName = std::string;

struct ApiRequirement {
  ApiName api;
  SourcePlace place;
  std::string note = {};
};

struct Bundle {
  std::string name;
  std::vector<ApiName> provided;
  std::vector<ApiRequirement> required;
};

struct ChannelEntry {
  std::string name;
  std::string replaces;
  std::vector<std::string> skips;
  std::optional<ForeignRange> skipRange;
  SourcePlace place;
};

struct Channel {
  std::string name;
  std::vector<ChannelEntry> entries;
};

struct OperatorPackage {
  std::vector<Bundle> bundles;  // of the versions of the same indices
  std::unordered_map<std::string, std::size_t> byName;
  std::vector<Channel> channels;
  std::map<std::string, std::string> deprecatedBundles;  // with what is told of that
  std::map<std::string, std::string> deprecatedChannels;
  std::string note;  // on its own deprecation
};

class OperatorReader {
 public:
  explicit OperatorReader(const Reading& reading) : reading_(reading) {}

  ForeignCatalogue read() {
    for (const auto& source : reading_.sources) {
      for (const auto& path : filesOf(source, {".json", ".yaml", ".yml"})) readFile(path);
    }
    for (auto& [name, package] : packages_) {
      addHops(package, catalogue_[name]);
      addNotes(package, catalogue_[name]);
    }
    collectProviders();
    for (auto& [name, package] : packages_) addApiDependencies(name, package);
    return std::move(catalogue_);
  }

 private:
  void readFile(const std::filesystem::path& path) {
    SourceFile file(path, reading_.advance);
    readDocuments(file, [&](const SourceNode& document) {
      reading_.log.attempt([&] { readDocument(document); });
    });
  }

  void readDocument(const SourceNode& document) {
    const std::string schema = document.textField("schema");
    if (schema == "olm.bundle") {
      readBundle(document);
    } else if (schema == "olm.channel") {
      readChannel(document);
    } else if (schema == "olm.deprecations") {
      readDeprecations(document);
    } else if (schema == "olm.package") {
      document.textField("name");
    }
    // Catalogues may hold documents of schemas that others define.
  }

  void readBundle(const SourceNode& document) {
    const std::string packageName = document.textField("package");
    Bundle bundle{document.textField("name"), {}, {}};
    OperatorPackage& package = packages_[packageName];
    if (package.byName.contains(bundle.name)) {
      document.fail("the bundle " + bundle.name + " stands twice");
    }
    std::string version;
    std::vector<ForeignDependency> dependencies;
    for (const SourceNode& property : document.elements("properties")) {
      reading_.log.attempt(
          [&] { readProperty(property, packageName, version, bundle, dependencies); });
    }
    if (version.empty()) document.fail("the bundle has no property olm.package with its version");
    ForeignVersion& added = catalogue_[packageName].addVersion(version, document.place());
    added.dependencies = std::move(dependencies);
    package.byName.emplace(bundle.name, package.bundles.size());
    package.bundles.push_back(std::move(bundle));
  }

  void readProperty(const SourceNode& property, const std::string& packageName,
                    std::string& version, Bundle& bundle,
                    std::vector<ForeignDependency>& dependencies) {
    const std::string type = property.textField("type");
    if (type == "olm.package") {
      const SourceNode value = property.field("value");
      const SourceNode name = value.field("packageName");
      if (name.asText() != packageName) {
        name.fail("the bundle is one of the package " + packageName);
      }
      if (!version.empty()) property.fail("the bundle has its version already");
      version = value.textField("version");
    } else if (type == "olm.gvk") {
      bundle.provided.push_back(readApi(property.field("value")));
    } else if (type == "olm.package.required") {
      dependencies.push_back(readRequiredPackage(property.field("value")));
    } else if (type == "olm.gvk.required") {
      bundle.required.push_back({readApi(property.field("value")), property.place()});
    } else if (type == "olm.constraint") {
      readConstraint(property.field("value"), "", bundle, dependencies);
    }
  }

  static ApiName readApi(const SourceNode& value) {
    return value.textField("group") + "/" + value.textField("version") + ", " +
           value.textField("kind");
  }

  static ForeignDependency readRequiredPackage(const SourceNode& value) {
    const SourceNode range = value.field("versionRange");
    return {value.textField("packageName"), rangeIn(range), range.asText(), value.place()};
  }

  static ForeignRange rangeIn(const SourceNode& text) {
    return text.place().orFail(
        [&] { return parseForeignRange(text.asText(), RangeGrammar::Operator); });
  }

  /// A constraint of one package or API, or of several that must all hold.
  void readConstraint(const SourceNode& value, std::string note, Bundle& bundle,
                      std::vector<ForeignDependency>& dependencies) {
    addNote(value.optionalText("failureMessage"), note);
    for (const auto& [kind, content] : value.entries()) {
      if (kind == "failureMessage") continue;
      if (kind == "package") {
        dependencies.push_back(readRequiredPackage(content));
        dependencies.back().note = note;
      } else if (kind == "gvk") {
        bundle.required.push_back({readApi(content), content.place(), note});
      } else if (kind == "all") {
        for (const SourceNode& each : content.field("constraints").elements()) {
          readConstraint(each, note, bundle, dependencies);
        }
      } else {
        content.fail("constraints of the kind \"" + kind + "\" cannot be held by a catalogue");
      }
    }
  }

  void readChannel(const SourceNode& document) {
    OperatorPackage& package = packages_[document.textField("package")];
    Channel channel{document.textField("name"), {}};
    for (const SourceNode& entry : document.field("entries").elements()) {
      reading_.log.attempt([&] { channel.entries.push_back(readEntry(entry)); });
    }
    package.channels.push_back(std::move(channel));
  }

  static ChannelEntry readEntry(const SourceNode& entry) {
    ChannelEntry result{
        entry.textField("name"), entry.optionalText("replaces"), {}, {}, entry.place()};
    for (const SourceNode& skipped : entry.elements("skips")) {
      result.skips.push_back(skipped.asText());
    }
    const auto range = entry.find("skipRange");
    if (range && !range->asText().empty()) result.skipRange = rangeIn(*range);
    return result;
  }

  void readDeprecations(const SourceNode& document) {
    OperatorPackage& package = packages_[document.textField("package")];
    for (const SourceNode& entry : document.field("entries").elements()) {
      reading_.log.attempt([&] {
        const SourceNode reference = entry.field("reference");
        const std::string schema = reference.textField("schema");
        const std::string message = entry.optionalText("message");
        if (schema == "olm.bundle") {
          package.deprecatedBundles.emplace(reference.textField("name"), message);
        } else if (schema == "olm.channel") {
          package.deprecatedChannels.emplace(reference.textField("name"), message);
        } else if (schema == "olm.package") {
          package.note = message;
        } else {
          reference.fail("nothing of the schema " + schema + " can be deprecated");
        }
      });
    }
  }

  /// The hops of all channels. Those into what a channel skips do not count in it, and those of a
  /// deprecated channel are expensive, as those into a deprecated bundle are.
  void addHops(const OperatorPackage& package, ForeignPackage& versions) {
    for (const Channel& channel : package.channels) {
      std::set<std::string> skipped;
      for (const ChannelEntry& entry : channel.entries) {
        skipped.insert(entry.skips.begin(), entry.skips.end());
      }
      for (const ChannelEntry& entry : channel.entries) {
        const auto to = package.byName.find(entry.name);
        if (to == package.byName.end()) {
          reading_.log.leaveOut(entry.place.error("there is no bundle " + entry.name));
        } else if (!skipped.contains(entry.name)) {
          addHopsInto(to->second, entry, channel, package, versions);
        }
      }
    }
  }

  static void addHopsInto(std::size_t to, const ChannelEntry& entry, const Channel& channel,
                          const OperatorPackage& package, ForeignPackage& versions) {
    const auto deprecation = package.deprecatedChannels.find(channel.name);
    const bool isOfDeprecated = deprecation != package.deprecatedChannels.end();
    const bool isExpensive = isOfDeprecated || package.deprecatedBundles.contains(entry.name);
    const std::string note = isOfDeprecated ? deprecation->second : "";
    const auto addFrom = [&](const std::string& name) {
      // What is replaced need not be in the catalogue any more.
      const auto from = package.byName.find(name);
      if (from != package.byName.end()) versions.addHop(from->second, to, isExpensive, note);
    };
    addFrom(entry.replaces);
    for (const std::string& skipped : entry.skips) addFrom(skipped);
    if (!entry.skipRange) return;
    for (const ChannelEntry& other : channel.entries) {
      const auto from = package.byName.find(other.name);
      if (from == package.byName.end()) continue;
      const ForeignVersion& version = versions.versions()[from->second];
      if (entry.skipRange->matches(version.text, version.order)) addFrom(other.name);
    }
  }

  /// What is told of deprecated bundles and packages, of their versions.
  static void addNotes(const OperatorPackage& package, ForeignPackage& versions) {
    for (std::size_t i = 0; i < package.bundles.size(); ++i) {
      const auto deprecation = package.deprecatedBundles.find(package.bundles[i].name);
      const bool isDeprecated = deprecation != package.deprecatedBundles.end();
      std::string& note = versions.versions()[i].note;
      if (isDeprecated) addNote(deprecation->second, note);
      addNote(package.note, note);
    }
  }

  void collectProviders() {
    for (const auto& [name, package] : packages_) {
      const std::vector<ForeignVersion>& versions = catalogue_[name].versions();
      for (std::size_t i = 0; i < package.bundles.size(); ++i) {
        for (const ApiName& api : package.bundles[i].provided) {
          providers_[api][name].push_back(versions[i].text);
        }
      }
    }
  }

  void addApiDependencies(const std::string& name, const OperatorPackage& package) {
    std::vector<ForeignVersion>& versions = catalogue_[name].versions();
    for (std::size_t i = 0; i < package.bundles.size(); ++i) {
      const Bundle& bundle = package.bundles[i];
      for (const ApiRequirement& required : bundle.required) {
        const auto& provided = bundle.provided;
        if (std::find(provided.begin(), provided.end(), required.api) != provided.end()) continue;
        reading_.log.attempt([&] { addApiDependency(required, versions[i].dependencies); });
      }
    }
  }

  /// The dependency on the one package that provides an API; of several, on the one that is needed
  /// anyway.
  void addApiDependency(const ApiRequirement& required,
                        std::vector<ForeignDependency>& dependencies) const {
    const auto found = providers_.find(required.api);
    if (found == providers_.end()) {
      required.place.fail("no package provides the API " + required.api);
    }
    auto provider = found->second.begin();
    if (found->second.size() > 1) {
      provider = std::find_if(found->second.begin(), found->second.end(), [&](const auto& each) {
        return std::any_of(dependencies.begin(), dependencies.end(),
                           [&](const auto& needed) { return needed.name == each.first; });
      });
    }
    if (provider == found->second.end()) {
      std::string names;
      for (const auto& [name, ignored] : found->second) names += (names.empty() ? "" : ", ") + name;
      required.place.fail("several packages provide the API " + required.api + ", " + names +
                          "; a catalogue cannot hold a choice between names");
    }
    dependencies.push_back({provider->first, ForeignRange::versions(provider->second),
                            "what provides " + required.api, required.place, required.note});
  }

  const Reading& reading_;
  ForeignCatalogue catalogue_;
  std::map<std::string, OperatorPackage> packages_;
  std::map<ApiName, std::map<std::string, std::vector<std::string>>> providers_;
};

}  // namespace

ForeignCatalogue readOperators(const Reading& reading) {
  return OperatorReader(reading).read();
}

}  // namespace tarn::evolution::catalogue
