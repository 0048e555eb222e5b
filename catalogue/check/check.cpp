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

void leaveOutWhatDoesNotLink(DraftIndex& index, Findings& findings) {
  const DependencyGraph graph = graphOf(index);
  const DependencyComponents components(graph);
  checkCycles(index, components, findings);
  if (components.cyclic().empty()) return;
  index.leaveOutLeadingBack(
      [&](Slot from, Slot candidate) { return components.areTogether(from, candidate); });
}

}  // namespace

std::vector<Finding> check(const CatalogueDraft& draft, const CheckLimits& limits) {
  if (!draft.isReadable) return draft.findings;
  DraftIndex index(draft);
  Findings findings(index);
  checkVersions(index, findings);
  checkDependencies(index, findings);
  leaveOutWhatDoesNotLink(index, findings);
  const DependencyGraph graph = graphOf(index);
  const DependencyComponents components(graph);
  LinkAnalysis links(index, components, graph, limits.linkWork);
  checkLinks(index, links, findings);
  checkHops(index, findings);
  checkHopGraph(index, findings);
  checkQuestion(index, links, findings);
  return findings.inOrder();
}

}  // namespace tarn::evolution::catalogue
