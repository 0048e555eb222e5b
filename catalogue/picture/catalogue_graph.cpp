#include "catalogue/picture/catalogue_graph.hpp"

#include <deque>
#include <map>
#include <optional>
#include <set>

#include "catalogue/model/admitted_versions.hpp"
#include "catalogue/text/display_text.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::VersionId;

namespace {

class GraphBuilder {
 public:
  GraphBuilder(BrowsableRepository& repository, const GraphRequest& request)
      : repository_(repository), request_(request) {}

  CatalogueGraph build() {
    chooseVersions();
    if (request_.withDependencies) addNeeded();
    addGroups();
    addHops();
    addDependencies();
    return std::move(graph_);
  }

 private:
  /// The versions shown of a metamodel, by their text, which tells them apart but for a semantic
  /// version and the same digits as a text.
  using VersionKey = std::pair<bool, std::string>;
  struct Shown {
    std::set<VersionKey> versions;
    std::vector<CatalogueMetamodel> metamodels;  // in the catalogue's order
    std::size_t group = 0;
    std::map<VersionKey, std::size_t> nodes;
    std::map<std::string, std::size_t> ranges;
  };

  static VersionKey keyOf(const VersionId& version) {
    return {version.isSemVer(), textOf(version)};
  }

  void chooseVersions() {
    const auto names = request_.names.empty() ? repository_.listNames() : request_.names;
    for (const std::u16string& name : names) {
      const auto metamodels = repository_.listMetamodels(name);
      if (metamodels.empty()) {
        throw std::invalid_argument(toVisible(unknownMetamodel(name)));
      }
      for (const CatalogueMetamodel& metamodel : metamodels) show(metamodel.descriptor);
    }
  }

  void show(const Metamodel& metamodel) {
    if (shown_[metamodel.name].versions.insert(keyOf(metamodel.version)).second) {
      count();
      pending_.push_back(metamodel);
    }
  }

  void addNeeded() {
    while (!pending_.empty()) {
      const Metamodel metamodel = std::move(pending_.front());
      pending_.pop_front();
      for (const Dependency& dependency : metamodel.dependencies) {
        for (const Metamodel& needed : findSatisfying(dependency)) show(needed);
      }
    }
  }

  std::vector<Metamodel> findSatisfying(const Dependency& dependency) {
    return listAdmitted(repository_, dependency.name, dependency.range);
  }

  void addGroups() {
    for (auto& [name, shown] : shown_) {
      shown.group = graph_.groups.size();
      graph_.groups.push_back({fl::i18n::ustring_to_utf8(name), {}});
      for (CatalogueMetamodel& metamodel : repository_.listMetamodels(name)) {
        const VersionKey key = keyOf(metamodel.descriptor.version);
        if (!shown.versions.contains(key)) continue;
        shown.nodes.emplace(key, graph_.groups.back().nodes.size());
        graph_.groups.back().nodes.push_back(
            {key.second, false, fl::i18n::ustring_to_utf8(metamodel.note)});
        shown.metamodels.push_back(std::move(metamodel));
      }
    }
  }

  /// The node of a version that is shown.
  static std::optional<CatalogueGraph::End> findEnd(const Shown& shown, const VersionId& version) {
    const auto found = shown.nodes.find(keyOf(version));
    if (found == shown.nodes.end()) return std::nullopt;
    return CatalogueGraph::End{shown.group, found->second};
  }

  /// A hop may lead to a text version by its equivalent.
  std::optional<CatalogueGraph::End> findTarget(const Shown& shown, const Hop& hop) {
    if (const auto end = findEnd(shown, hop.to)) return end;
    const auto target = repository_.getMetamodel(hop.name, hop.to);
    return target ? findEnd(shown, target->version) : std::nullopt;
  }

  void addHops() {
    for (const auto& [name, shown] : shown_) {
      for (const Hop& hop : repository_.listHops(name)) {
        const auto from = findEnd(shown, hop.from);
        const auto to = findTarget(shown, hop);
        if (!from || !to) continue;
        count();
        graph_.hops.push_back(
            {*from, *to, hop.expensive, fl::i18n::ustring_to_utf8(repository_.findHopNote(hop))});
      }
    }
  }

  void addDependencies() {
    for (const auto& [name, shown] : shown_) {
      for (const CatalogueMetamodel& metamodel : shown.metamodels) {
        const auto from = findEnd(shown, metamodel.descriptor.version);
        const auto& dependencies = metamodel.descriptor.dependencies;
        for (std::size_t i = 0; i < dependencies.size(); ++i) {
          const auto needed = shown_.find(dependencies[i].name);
          if (needed == shown_.end()) continue;
          count();
          graph_.dependencies.push_back({*from, endOf(dependencies[i], needed->second),
                                         fl::i18n::ustring_to_utf8(metamodel.noteOfDependency(i))});
        }
        for (const auto& [required, note] : metamodel.requirements) {
          const auto needed = shown_.find(required.name);
          if (needed == shown_.end()) continue;
          count();
          graph_.dependencies.push_back({*from,
                                         endOf({required.name, required.range}, needed->second),
                                         fl::i18n::ustring_to_utf8(note)});
        }
      }
    }
  }

  /// What a dependency leads to: the version that alone satisfies it, or the range.
  CatalogueGraph::End endOf(const Dependency& dependency, Shown& needed) {
    const auto satisfying = findSatisfying(dependency);
    if (satisfying.size() == 1) {
      if (const auto end = findEnd(needed, satisfying.front().version)) return *end;
    }
    auto& nodes = graph_.groups[needed.group].nodes;
    const auto [range, isNew] = needed.ranges.emplace(rangeText(dependency.range), nodes.size());
    if (isNew) {
      count();
      nodes.push_back({range->first + ": " + countedText(satisfying.size(), "version"), true, {}});
    }
    return {needed.group, range->second};
  }

  void count() {
    if (++size_ > request_.limit) {
      throw GraphTooLarge("the graph has more than " + std::to_string(request_.limit) +
                          " versions, ranges, hops and dependencies");
    }
  }

  BrowsableRepository& repository_;
  const GraphRequest& request_;
  std::map<std::u16string, Shown> shown_;
  std::deque<Metamodel> pending_;
  CatalogueGraph graph_;
  std::size_t size_ = 0;
};

}  // namespace

CatalogueGraph makeGraph(BrowsableRepository& repository, const GraphRequest& request) {
  return GraphBuilder(repository, request).build();
}

}  // namespace tarn::evolution::catalogue
