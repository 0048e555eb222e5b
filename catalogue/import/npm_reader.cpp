// Packuments, or manifests of single versions: a package is a metamodel. Peers are what must be
// there beside it, in one version for all, as dependencies of metamodels are, or only if they are
// there, as optional ones; ordinary dependencies
// of npm packages are installed below them, as often as need be, and do not count.
#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

#include "catalogue/import/documents.hpp"
#include "catalogue/import/offered_hops.hpp"
#include "catalogue/import/readers.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// Which fields of packuments and manifests count. What else there is may be ten times as much.
bool isWantedOfPackument(std::size_t depth, const std::string& name) {
  constexpr std::array<std::string_view, 9> wanted{"name",
                                                   "versions",
                                                   "dist-tags",
                                                   "version",
                                                   "peerDependencies",
                                                   "engines",
                                                   "peerDependenciesMeta",
                                                   "deprecated",
                                                   "optional"};
  return depth % 2 == 0 || std::find(wanted.begin(), wanted.end(), name) != wanted.end();
}

class NpmReader {
 public:
  explicit NpmReader(const Reading& reading) : reading_(reading) {}

  ForeignCatalogue read() {
    for (const auto& source : reading_.sources) {
      for (const auto& path : filesOf(source, {".json"})) {
        SourceFile file(path, reading_.advance);
        const auto use = [&](const SourceNode& document) {
          reading_.log.attempt([&] { readDocument(document); });
        };
        readJsonDocuments(file, use, isWantedOfPackument);
      }
    }
    for (auto& [name, package] : catalogue_) addOfferedHops(package, deprecated_[name]);
    for (Peer& peer : peers_) reading_.log.attempt([&] { addPeer(peer); });
    return std::move(catalogue_);
  }

 private:
  using Tags = std::map<std::string, std::string>;

  /// What a version needs; its range may be a tag of a package that is read later.
  struct Peer {
    std::string package;
    std::size_t version;
    std::string name;
    std::string range;
    SourcePlace place;
    bool isOptional;
  };

  /// A packument, or what a client shows of versions: a manifest, or a list of some.
  void readDocument(const SourceNode& document) {
    if (document.isArray()) {
      for (const SourceNode& manifest : document.elements()) {
        reading_.log.attempt([&] { readManifest(manifest); });
      }
      return;
    }
    const auto versions = document.find("versions");
    if ((versions && versions->isObject()) || document.optionalText("version").empty()) {
      readPackument(document);
    } else {
      readManifest(document);
    }
  }

  void readManifest(const SourceNode& manifest) {
    const std::string name = manifest.textField("name");
    readTags(name, manifest);
    readVersion(name, manifest.textField("version"), manifest);
  }

  void readPackument(const SourceNode& document) {
    const std::string name = document.textField("name");
    const SourceNode versions = document.field("versions");
    if (catalogue_.contains(name)) document.fail("the package " + name + " stands twice");
    readTags(name, document);
    for (const auto& [text, manifest] : versions.entries()) {
      reading_.log.attempt(
          [&, &text = text, &manifest = manifest] { readVersion(name, text, manifest); });
    }
  }

  void readTags(const std::string& name, const SourceNode& document) {
    for (const auto& [tag, version] : document.entries("dist-tags")) {
      tags_[name][tag] = version.asText();
    }
  }

  void readVersion(const std::string& name, const std::string& text, const SourceNode& manifest) {
    ForeignPackage& package = catalogue_[name];
    package.ordersPrereleases = false;
    const std::string own = manifest.optionalText("version");
    if (!own.empty() && own != text) manifest.fail("is the manifest of the version " + own);
    std::vector<Peer> peers;
    const std::size_t index = package.versions().size();
    const std::set<std::string> optional = optionalPeers(manifest);
    for (const char* field : {"peerDependencies", "engines"}) {
      const bool isOfEngines = field == std::string("engines");
      if (isOfEngines && !reading_.options.withEngines) continue;
      const auto needed = manifest.find(field);
      // Long ago, engines were lists of texts.
      if (!needed || (isOfEngines && needed->isArray())) continue;
      for (const auto& [peer, range] : needed->entries()) {
        peers.push_back({name, index, peer, range.asText(), range.place(),
                         !isOfEngines && optional.contains(peer)});
      }
    }
    package.addVersion(text, manifest.place());
    const std::string reason = reasonOfDeprecation(manifest);
    if (!reason.empty()) {
      deprecated_[name].insert(index);
      package.versions().back().note = reason;
    }
    std::move(peers.begin(), peers.end(), std::back_inserter(peers_));
  }

  /// The peers that need not be there.
  static std::set<std::string> optionalPeers(const SourceNode& manifest) {
    std::set<std::string> result;
    for (const auto& [peer, about] : manifest.entries("peerDependenciesMeta")) {
      const auto isOptional = about.find("optional");
      if (isOptional && isOptional->asBoolean()) result.insert(peer);
    }
    return result;
  }

  /// "deprecated" is the reason, or sometimes just true; an empty reason takes it back. Empty for a
  /// version that is not deprecated.
  static std::string reasonOfDeprecation(const SourceNode& manifest) {
    const auto reason = manifest.find("deprecated");
    if (!reason) return {};
    if (reason->isBoolean()) return reason->asBoolean() ? "deprecated" : "";
    return reason->asText();
  }

  void addOfferedHops(ForeignPackage& package, const std::set<std::size_t>& deprecated) const {
    const auto isDeprecatedVersion = [&](std::size_t each) { return deprecated.contains(each); };
    const HopOffer offer(package.versions(), reading_.options.offeredHops, isDeprecatedVersion);
    for (std::size_t from = 0; from < package.versions().size(); ++from) {
      for (const std::size_t to : offer.from(from)) {
        package.addHop(from, to, deprecated.contains(to));
      }
    }
  }

  void addPeer(Peer& peer) {
    auto& dependencies = catalogue_[peer.package].versions()[peer.version].dependencies;
    dependencies.push_back({peer.name, rangeOf(peer), peer.range, peer.place, {}, peer.isOptional});
  }

  ForeignRange rangeOf(const Peer& peer) const {
    const auto tags = tags_.find(peer.name);
    if (tags != tags_.end()) {
      const auto version = tags->second.find(peer.range);
      if (version != tags->second.end()) return ForeignRange::versions({version->second});
    }
    return peer.place.orFail([&] { return parseForeignRange(peer.range, RangeGrammar::Npm); });
  }

  const Reading& reading_;
  ForeignCatalogue catalogue_;
  std::map<std::string, Tags> tags_;
  std::map<std::string, std::set<std::size_t>> deprecated_;  // versions of packages
  std::vector<Peer> peers_;
};

}  // namespace

ForeignCatalogue readNpmPackages(const Reading& reading) {
  return NpmReader(reading).read();
}

}  // namespace tarn::evolution::catalogue
