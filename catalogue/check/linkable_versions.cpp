#include "catalogue/check/linkable_versions.hpp"

#include "catalogue/check/catalogue_draft.hpp"
#include "catalogue/check/draft_index.hpp"
#include "catalogue/check/link_analysis.hpp"

namespace tarn::evolution::catalogue {

namespace {

MetamodelRow rowOf(const CatalogueMetamodel& metamodel, std::size_t number) {
  MetamodelRow row{number, number, metamodel.descriptor.name, metamodel.descriptor.version,
                   metamodel.equivalent};
  for (const pathfinder::Dependency& dependency : metamodel.descriptor.dependencies) {
    const std::size_t place = row.dependencies.size();
    row.dependencies.push_back({place, place, dependency.name, dependency.range});
  }
  return row;
}

Linkability meant(LinkAnalysis::State state) {
  if (state == LinkAnalysis::State::Linkable) return Linkability::Linkable;
  return state == LinkAnalysis::State::Undecided ? Linkability::Undecided : Linkability::Unlinkable;
}

}  // namespace

std::vector<Linkability> linkabilitiesOf(const CatalogueContent& content,
                                         const CheckLimits& limits) {
  CatalogueDraft draft;
  for (const CatalogueMetamodel& metamodel : content.metamodels) {
    draft.metamodels.push_back(rowOf(metamodel, draft.metamodels.size()));
  }
  DraftIndex index(draft);
  {
    const DependencyGraph all = admissionsOf(index);
    leaveOutWhatLeadsBack(index, DependencyComponents(all));
  }
  const DependencyGraph graph = admissionsOf(index);
  const DependencyComponents components(graph);
  const LinkAnalysis links(index, components, graph, limits.linkWork);
  std::vector<Linkability> result(content.metamodels.size());
  for (Slot slot = 0; slot < index.slots().size(); ++slot) {
    result[index.row(slot).number] = meant(links.state(slot));
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
