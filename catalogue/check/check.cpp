#include "catalogue/check/check.hpp"

#include <utility>

#include "catalogue/check/checks.hpp"

namespace tarn::evolution::catalogue {

namespace {

DependencyGraph graphOf(const DraftIndex& index) {
  std::vector<DependencyGraph::Dependency> dependencies;
  for (Slot slot = 0; slot < index.slots().size(); ++slot) {
    for (const ResolvedDependency& dependency : index.dependenciesOf(slot)) {
      dependency.forCandidates([&](SlotInterval each) { dependencies.push_back({slot, each}); });
    }
  }
  return {index.slots().size(), std::move(dependencies)};
}

}  // namespace

std::vector<Finding> check(const CatalogueDraft& draft, const CheckLimits& limits) {
  if (!draft.isReadable) return draft.findings;
  const DraftIndex index(draft);
  Findings findings(index);
  checkVersions(index, findings);
  checkDependencies(index, findings);
  const DependencyGraph graph = graphOf(index);
  const DependencyComponents components(graph);
  checkCycles(index, components, findings);
  LinkAnalysis links(index, components, graph, limits.linkWork);
  checkLinks(index, links, findings);
  checkHops(index, findings);
  checkHopGraph(index, findings);
  checkQuestion(index, links, findings);
  return findings.inOrder();
}

}  // namespace tarn::evolution::catalogue
