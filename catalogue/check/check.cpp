#include "catalogue/check/check.hpp"

#include "catalogue/check/checks.hpp"

namespace tarn::evolution::catalogue {

namespace {

void leaveOutWhatDoesNotLink(DraftIndex& index, Findings& findings) {
  const DependencyGraph graph = admissionsOf(index);
  const DependencyComponents components(graph);
  checkCycles(index, components, findings);
  leaveOutWhatLeadsBack(index, components);
}

}  // namespace

std::vector<Finding> check(const CatalogueDraft& draft, const CheckLimits& limits) {
  if (!draft.isReadable) return draft.findings;
  DraftIndex index(draft);
  Findings findings(index);
  checkVersions(index, findings);
  checkDependencies(index, findings);
  leaveOutWhatDoesNotLink(index, findings);
  const DependencyGraph graph = admissionsOf(index);
  const DependencyComponents components(graph);
  LinkAnalysis links(index, components, graph, limits.linkWork);
  checkLinks(index, links, findings);
  checkHops(index, findings);
  checkHopGraph(index, findings);
  checkQuestion(index, links, findings);
  return findings.inOrder();
}

}  // namespace tarn::evolution::catalogue
