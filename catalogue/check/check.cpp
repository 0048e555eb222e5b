#include "catalogue/check/check.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "catalogue/check/checks.hpp"

namespace tarn::evolution::catalogue {

namespace {

bool hasOptional(const CatalogueDraft& draft) {
  return std::any_of(draft.metamodels.begin(), draft.metamodels.end(), [](const auto& row) {
    return std::any_of(row.dependencies.begin(), row.dependencies.end(),
                       [](const DependencyRow& dependency) { return dependency.isOptional; });
  });
}

/// Leaves out what does not link. Returns an index that has it, if there is any.
std::optional<DraftIndex> leaveOutWhatDoesNotLink(DraftIndex& index, Findings& findings) {
  const DependencyGraph graph = admissionsOf(index);
  const DependencyComponents components(graph);
  checkCycles(index, components, findings);
  leaveOutWhatLeadsBack(index, components);
  if (components.cyclic().empty() && !hasOptional(index.draft())) return std::nullopt;
  std::optional<DraftIndex> whole(std::in_place, index.draft(), Needs::All);
  leaveOutWhatLeadsBack(*whole, components);
  return whole;
}

}  // namespace

std::vector<Finding> check(const CatalogueDraft& draft, const CheckLimits& limits) {
  if (!draft.isReadable) return draft.findings;
  DraftIndex index(draft);
  Findings findings(index);
  checkVersions(index, findings);
  checkDependencies(index, findings);
  const std::optional<DraftIndex> whole = leaveOutWhatDoesNotLink(index, findings);
  const DependencyGraph graph = admissionsOf(index);
  const DependencyComponents components(graph);
  LinkAnalysis links(index, components, graph, limits.linkWork);
  checkLinks(index, links, findings);
  if (whole) checkRequirements(*whole, links, limits.linkWork, findings);
  checkHops(index, findings);
  checkHopGraph(index, findings);
  checkQuestion(index, links, findings);
  return findings.inOrder();
}

}  // namespace tarn::evolution::catalogue
