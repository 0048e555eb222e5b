#include "catalogue/check/check.hpp"

#include <algorithm>
#include <tuple>

#include "catalogue/check/draft_checks.hpp"

namespace tarn::evolution::catalogue {

std::vector<Finding> check(const CatalogueDraft& draft, const CheckLimits& limits) {
  std::vector<Finding> findings = draft.findings;
  if (!draft.isReadable) return findings;
  const DraftIndex index(draft);
  checkVersions(index, findings);
  checkDependencies(index, findings);
  const DependencyRangeGraph graph(index);
  const DependencyComponents components(graph);
  checkCycles(index, components, findings);
  LinkAnalysis links(index, components, graph, limits.linkWork);
  checkLinks(index, links, findings);
  checkHops(index, findings);
  checkHopGraph(index, findings);
  checkQuestion(index, links, findings);
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& left, const Finding& right) {
    return std::tie(left.place.order, left.place.text, left.code) <
           std::tie(right.place.order, right.place.text, right.code);
  });
  return findings;
}

}  // namespace tarn::evolution::catalogue
