#include "catalogue/import/catalogue_assembly.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <unordered_map>
#include <utility>

#include "catalogue/catalogue_index.hpp"
#include "catalogue/import/known_version.hpp"
#include "catalogue/import/range_fitting.hpp"
#include "catalogue/import/version_places.hpp"
#include "catalogue/model/dependency_split.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "catalogue/utf16.hpp"
#include "catalogue/version_text.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

namespace {

using Indices = std::vector<std::size_t>;

/// Those of versions, which many dependencies share.
using SharedIndices = std::shared_ptr<const std::vector<std::uint32_t>>;

/// What a version accepts of one name: all that its dependencies on it say.
struct Need {
  std::string name;
  std::vector<const ForeignDependency*> sources;
  SharedIndices accepted;  // of the known versions of the name; some may have been left out since
  bool isOptional;
};

struct PackageInWork {
  const ForeignPackage* source;
  const std::string* prefix;
  Indices order;                         // of its versions in the catalogue
  std::vector<std::vector<Need>> needs;  // of each version
};

class Assembly {
 public:
  Assembly(CatalogueContent former, ImportLog& log) : former_(std::move(former)), log_(log) {}

  void add(const ForeignPart& part) {
    for (const auto& [ownName, package] : part.catalogue) {
      if (package.versions().empty()) continue;
      std::string name = part.prefix + ownName;
      if (packages_.contains(name)) {
        package.versions().front().place.fail("another source has the name \"" + name +
                                              "\" as well; a prefix can keep them apart");
      }
      try {
        parseName(name);
      } catch (const std::invalid_argument& error) {
        log_.leaveOut(
            package.versions().front().place.error("the name " + std::string(error.what())));
        continue;
      }
      packages_.emplace(std::move(name), PackageInWork{&package, &part.prefix, {}, {}});
    }
  }

  AssembledCatalogue assemble() {
    for (auto& [name, package] : packages_) knowVersions(name, package);
    keepFormer();
    for (auto& [name, package] : packages_) collectNeeds(name, package);
    while (leaveOutUnsatisfiable()) {
    }
    for (const auto& [name, package] : packages_) write(name, package);
    checkKept();
    return std::move(result_);
  }

 private:
  void knowVersions(const std::string& name, PackageInWork& package) {
    std::vector<KnownVersion>& known = known_[name];
    std::map<std::string, std::string> met;  // texts, by what they read as
    for (const ForeignVersion& version : package.source->versions()) {
      known.push_back({version.text, version.order, VersionId()});
      KnownVersion& added = known.back();
      added.isLeftOut = true;
      log_.attempt([&] {
        try {
          added.id = parseVersion(version.text);
          if (version.equivalent && !added.id.isSemVer()) {
            added.equivalent = parseSemVer(*version.equivalent);
            added.order = parseFullVersion(*version.equivalent);
          }
        } catch (const std::invalid_argument& error) {
          version.place.fail("the version of " + name + " " + error.what());
        }
        const auto [same, isNew] = met.try_emplace(textOf(added.id), version.text);
        if (!isNew) {
          version.place.fail("the version " + version.text + " of " + name +
                             " reads as the same one as " + same->second);
        }
        added.isLeftOut = false;
      });
    }
    orderVersions(package, known);
  }

  void orderVersions(PackageInWork& package, std::vector<KnownVersion>& known) {
    Indices ascending(known.size());
    for (std::size_t i = 0; i < known.size(); ++i) ascending[i] = i;
    package.order = ascending;
    std::stable_sort(ascending.begin(), ascending.end(), [&](std::size_t left, std::size_t right) {
      const auto order = comparePrecedence(known[left].order, known[right].order);
      return order < 0 || (order == 0 && known[left].text < known[right].text);
    });
    if (!package.source->keepsOrder) package.order = ascending;
    if (!package.source->ordersPrereleases) return;
    std::vector<KnownVersion*> placeable;
    for (const std::size_t index : ascending) {
      if (!known[index].isLeftOut) placeable.push_back(&known[index]);
    }
    result_.unordered += placeTextVersions(placeable);
  }

  /// What stays of the catalogue that is replaced, and is known to the new names.
  void keepFormer() {
    const auto isReplaced = [&](const std::u16string& name) {
      return packages_.contains(fl::i18n::ustring_to_utf8(name));
    };
    for (CatalogueMetamodel& metamodel : former_.metamodels) {
      if (isReplaced(metamodel.descriptor.name)) continue;
      const std::string text = textOf(metamodel.descriptor.version);
      known_[fl::i18n::ustring_to_utf8(metamodel.descriptor.name)].push_back(
          {text, parseFullVersion(text), metamodel.descriptor.version, metamodel.equivalent});
      result_.content.metamodels.push_back(std::move(metamodel));
    }
    for (pathfinder::Hop& hop : former_.hops) {
      if (isReplaced(hop.name)) continue;
      result_.content.hopNotes.add(hop, former_.hopNotes.of(hop));
      result_.content.hops.push_back(std::move(hop));
    }
    result_.content.question = std::move(former_.question);
  }

  void collectNeeds(const std::string& name, PackageInWork& package) {
    const std::vector<ForeignVersion>& versions = package.source->versions();
    package.needs.resize(versions.size());
    for (std::size_t i = 0; i < versions.size(); ++i) {
      if (known_[name][i].isLeftOut) continue;
      for (const ForeignDependency& dependency : versions[i].dependencies) {
        log_.attempt([&] { addNeed(dependency, name, i, package); });
      }
    }
  }

  void addNeed(const ForeignDependency& dependency, const std::string& owner, std::size_t version,
               PackageInWork& package) {
    std::vector<Need>& needs = package.needs[version];
    std::string name = *package.prefix + dependency.name;
    if (!known_.contains(name)) name = dependency.name;
    if (!known_.contains(name)) {
      if (dependency.isOptional) return;
      dependency.place.fail(owner + " needs \"" + dependency.name + "\", which no source has");
    }
    const SharedIndices& accepted = acceptedBy(dependency, name);
    if (name == owner) {
      // Of its own name, a version has no other beside it.
      const bool isItself =
          std::find(accepted->begin(), accepted->end(), version) != accepted->end();
      if (isItself) return;
      KnownVersion& known = known_[owner][version];
      known.isLeftOut = true;
      dependency.place.fail(owner + " " + known.text + " needs " + owner + " " + dependency.text +
                            ", which it is not itself");
    }
    const auto found = std::find_if(needs.begin(), needs.end(), [&](const Need& need) {
      return need.name == name && need.isOptional == dependency.isOptional;
    });
    if (found == needs.end()) {
      needs.push_back({name, {&dependency}, accepted, dependency.isOptional});
      return;
    }
    std::vector<std::uint32_t> common;
    std::set_intersection(found->accepted->begin(), found->accepted->end(), accepted->begin(),
                          accepted->end(), std::back_inserter(common));
    found->accepted = std::make_shared<const std::vector<std::uint32_t>>(std::move(common));
    found->sources.push_back(&dependency);
  }

  const SharedIndices& acceptedBy(const ForeignDependency& dependency, const std::string& name) {
    const auto [place, isNew] = accepted_.try_emplace(name + '\0' + dependency.text);
    if (isNew) {
      const std::vector<KnownVersion>& known = known_[name];
      std::vector<std::uint32_t> accepted;
      for (std::uint32_t i = 0; i < known.size(); ++i) {
        if (dependency.range.matches(known[i].text, known[i].order)) accepted.push_back(i);
      }
      accepted.shrink_to_fit();
      place->second = std::make_shared<const std::vector<std::uint32_t>>(std::move(accepted));
    }
    return place->second;
  }

  /// Whether another version had to go, for want of what it needs.
  bool leaveOutUnsatisfiable() {
    bool isAnyNew = false;
    for (auto& [name, package] : packages_) {
      std::vector<KnownVersion>& known = known_[name];
      for (std::size_t i = 0; i < known.size(); ++i) {
        if (known[i].isLeftOut) continue;
        for (const Need& need : package.needs[i]) {
          if (need.isOptional) continue;
          const std::vector<KnownVersion>& needed = known_[need.name];
          if (!std::all_of(need.accepted->begin(), need.accepted->end(),
                           [&](std::uint32_t each) { return needed[each].isLeftOut; })) {
            continue;
          }
          log_.leaveOut(need.sources.front()->place.error(name + " " + known[i].text + " needs " +
                                                          need.name + " " + textsOf(need) +
                                                          ", of which there is no version"));
          known[i].isLeftOut = true;
          isAnyNew = true;
          break;
        }
      }
    }
    return isAnyNew;
  }

  static std::string textsOf(const Need& need) {
    std::string text;
    for (const ForeignDependency* source : need.sources) {
      text += (text.empty() ? "" : " and ") + source->text;
    }
    return text;
  }

  void write(const std::string& name, const PackageInWork& package) {
    const std::u16string ownName = parseName(name);
    const std::vector<KnownVersion>& known = known_[name];
    Indices rank(known.size());
    for (std::size_t i = 0; i < package.order.size(); ++i) rank[package.order[i]] = i;
    for (const std::size_t index : package.order) {
      if (known[index].isLeftOut) continue;
      const ForeignVersion& source = package.source->versions()[index];
      CatalogueMetamodel metamodel{pathfinder::Metamodel(ownName, known[index].id, {}),
                                   known[index].equivalent, textIn(source.note)};
      for (const Need& need : package.needs[index]) {
        log_.attempt([&] {
          auto [required, range] = dependencyOf(need, name, known[index]);
          addDependency(metamodel, {std::move(required), std::move(range), need.isOptional},
                        noteOf(need));
        });
      }
      places_.emplace_back(source.place);
      result_.content.metamodels.push_back(std::move(metamodel));
    }
    std::vector<ForeignHop> hops = package.source->hops();
    if (!package.source->keepsOrder) {
      std::stable_sort(hops.begin(), hops.end(),
                       [&](const ForeignHop& left, const ForeignHop& right) {
                         return std::pair(rank[left.from], rank[right.to]) <
                                std::pair(rank[right.from], rank[left.to]);
                       });
    }
    for (const ForeignHop& hop : hops) {
      if (known[hop.from].isLeftOut || known[hop.to].isLeftOut) continue;
      result_.content.hops.emplace_back(ownName, known[hop.from].id, known[hop.to].id,
                                        hop.isExpensive);
      result_.content.hopNotes.add(result_.content.hops.back(), textIn(hop.note));
    }
  }

  /// What is told, which readers have from texts that are UTF-8.
  static std::u16string textIn(const std::string& note) {
    return note.empty() ? std::u16string() : toUtf16(note);
  }

  static std::u16string noteOf(const Need& need) {
    std::string note;
    for (const ForeignDependency* source : need.sources) addNote(source->note, note);
    return textIn(note);
  }

  pathfinder::Dependency dependencyOf(const Need& need, const std::string& owner,
                                      const KnownVersion& version) {
    std::vector<pathfinder::SemVerRange> spans = need.sources.front()->range.spans();
    for (const ForeignDependency* source : need.sources) {
      spans = commonSpans(spans, source->range.spans());
    }
    const std::vector<KnownVersion>& needed = known_[need.name];
    Indices wanted(need.accepted->begin(), need.accepted->end());
    std::erase_if(wanted, [&](std::size_t each) { return needed[each].isLeftOut; });
    if (wanted.empty()) {  // beside no version that there is
      return {parseName(need.name), pathfinder::SemVerRange{{0, 0, 0}, {0, 0, 0}}};
    }
    const auto range = fitRange(needed, wanted, spans);
    if (!range) {
      need.sources.front()->place.fail(owner + " " + version.text + " needs " + need.name + " " +
                                       textsOf(need) +
                                       ", which no range of a catalogue can tell apart");
    }
    return {parseName(need.name), *range};
  }

  /// What stays of the former catalogue must still find what it needs.
  void checkKept() const {
    const std::vector<CatalogueMetamodel>& metamodels = result_.content.metamodels;
    const CatalogueIndex index(metamodels, {});
    for (std::size_t i = 0; i < metamodels.size() - places_.size(); ++i) {
      for (const pathfinder::Dependency& dependency : metamodels[i].descriptor.dependencies) {
        const std::string name = fl::i18n::ustring_to_utf8(dependency.name);
        const auto package = packages_.find(name);
        if (package == packages_.end() ||
            !index.metamodelsIn(dependency.name, dependency.range).empty()) {
          continue;
        }
        const CatalogueMetamodel& needing = metamodels[i];
        package->second.source->versions().front().place.fail(
            fl::i18n::ustring_to_utf8(needing.descriptor.name) + " " +
            textOf(needing.descriptor.version) + " needs " + name + " " +
            rangeText(dependency.range) + ", of which no version is left");
      }
    }
  }

  CatalogueContent former_;
  ImportLog& log_;
  std::map<std::string, PackageInWork> packages_;
  std::unordered_map<std::string, std::vector<KnownVersion>> known_;
  std::unordered_map<std::string, SharedIndices> accepted_;  // by name and text of the range
  std::vector<SourcePlace> places_;                          // of the metamodels after those kept
  AssembledCatalogue result_;
};

}  // namespace

AssembledCatalogue assembleCatalogue(const std::vector<ForeignPart>& parts, CatalogueContent former,
                                     ImportLog& log) {
  Assembly assembly(std::move(former), log);
  for (const ForeignPart& part : parts) assembly.add(part);
  return assembly.assemble();
}

}  // namespace tarn::evolution::catalogue
