#include "catalogue/dependency_cycle.hpp"

#include <algorithm>
#include <unordered_map>

#include "catalogue/dependency_graph.hpp"
#include "catalogue/range_union.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::SemVer;
using pathfinder::SemVerRange;
using pathfinder::VersionRange;

namespace {

using Candidates = DependencyGraph::Candidates;
using Node = DependencyGraph::Node;
using Slot = DependencyGraph::Slot;

/// Lays the versions out in slots, those that have no semantic version after all others.
class SlotLayout {
 public:
  SlotLayout(const std::vector<CatalogueMetamodel>& metamodels, const CatalogueIndex& index)
      : index_(index) {
    std::vector<Node> textsOnly;
    for (Node node = 0; node < metamodels.size(); ++node) {
      const auto& [descriptor, equivalent] = metamodels[node];
      if (!descriptor.version.isSemVer() && !equivalent) textsOnly.push_back(node);
      if (!firstSlots_.try_emplace(descriptor.name, static_cast<Slot>(nodeAt_.size())).second) {
        continue;
      }
      for (const auto& version : index.semanticVersions(descriptor.name)) {
        nodeAt_.push_back(static_cast<Node>(version.position));
      }
    }
    nodeAt_.insert(nodeAt_.end(), textsOnly.begin(), textsOnly.end());
  }

  const std::vector<Node>& nodeAt() const { return nodeAt_; }

  Candidates candidates(const std::u16string& name, const VersionRange& wanted,
                        const DependencyGraph& graph) const {
    if (!wanted.isSemVerRange()) {
      const auto& found = index_.metamodelsAt(name, wanted.getText());
      if (found.empty()) return {0, 0};
      const Slot slot = graph.slotOf(static_cast<Node>(found.front()));
      return {slot, slot + 1};
    }
    const SemVerRange& range = wanted.getSemVerRange();
    const auto& versions = index_.semanticVersions(name);
    const auto firstFrom = [&](const SemVer& bound) {
      return std::lower_bound(versions.begin(), versions.end(), bound,
                              [](auto& entry, auto& v) { return entry.version < v; });
    };
    const auto first = firstFrom(range.lower);
    auto last = firstFrom(range.upper);
    if (wanted == VersionRange::singleVersion(range.lower)) {  // whose end may have wrapped
      last = first;
      while (last != versions.end() && last->version == range.lower) ++last;
    }
    const Slot start = firstSlots_.at(name);
    return {start + static_cast<Slot>(first - versions.begin()),
            start + static_cast<Slot>(last - versions.begin())};
  }

 private:
  const CatalogueIndex& index_;
  std::unordered_map<std::u16string, Slot> firstSlots_;
  std::vector<Node> nodeAt_;
};

}  // namespace

std::vector<CatalogueIndex::Position> findDependencyCycle(
    const std::vector<CatalogueMetamodel>& metamodels, const CatalogueIndex& index) {
  const SlotLayout layout(metamodels, index);
  DependencyGraph graph(layout.nodeAt());
  for (Node node = 0; node < metamodels.size(); ++node) {
    for (const Dependency& dependency : metamodels[node].descriptor.dependencies) {
      for (const VersionRange& piece : piecesOf(dependency.range)) {
        graph.addDependency(node, layout.candidates(dependency.name, piece, graph));
      }
    }
  }
  const std::vector<Node> cycle = graph.findCycle();
  return {cycle.begin(), cycle.end()};
}

}  // namespace tarn::evolution::catalogue
