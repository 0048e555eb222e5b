#include "pathfinder/search/target_baseline.hpp"

#include <utility>

#include "pathfinder/linking/selection_combination.hpp"
#include "pathfinder/values/name_order.hpp"

namespace tarn::evolution::pathfinder {

std::vector<VersionBaseline> findTargetBaselines(SearchHost& host, const VersionBaseline& baseline,
                                                 const LockstepHop& hops) {
  if (hops.empty()) return {};
  std::vector<Metamodel> targets;
  targets.reserve(hops.size());  // the selection points into it
  // The map's order decides what is linked first. Filled in name order, it depends on nothing but
  // the content asked about.
  std::unordered_map<std::u16string, const Metamodel*> selection;
  for (const auto* entry : inNameOrder(hops)) {
    std::optional<Metamodel> target = host.getMetamodel(entry->first, entry->second.to);
    if (!target) return {};
    targets.push_back(*std::move(target));
    selection.emplace(entry->first, &targets.back());
  }
  for (const auto* entry : inNameOrder(baseline.metamodels)) {
    if (entry->second) selection.emplace(entry->first, entry->second.get());
  }
  std::vector<SelectedMetamodel> inMapOrder;
  inMapOrder.reserve(selection.size());
  for (const auto& [name, metamodel] : selection) inMapOrder.push_back({&name, metamodel});
  return combineMetamodels(host, inMapOrder, Requirements::All);
}

}  // namespace tarn::evolution::pathfinder
