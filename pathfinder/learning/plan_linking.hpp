#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "pathfinder/hop.hpp"
#include "pathfinder/learning/dependency_space.hpp"
#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::pathfinder {

/// Dependencies form a cycle, or the application links a version to another one of its name, or to
/// a name that nothing else brings in.
struct NotLinkable {};

/// Links what plans over a dependency space hold, selection by selection: depth first along
/// dependencies, each version to those of the selection. A version that stands in several
/// selections with the same dependencies beside it is linked once.
class PlanLinking {
 public:
  PlanLinking(SelectionHost& host, const DependencySpace& dependencies)
      : host_(host), dependencies_(dependencies), space_(*dependencies.space) {}

  /// A plan of one way, linked.
  struct Path {
    std::vector<BaselineHop> steps;
    VersionBaseline first;
    VersionBaseline last;
  };

  /// No value when some versions, which then are `impossible`, cannot be held together: only if the
  /// application has linked more than dependencies say when it loaded something. Throws
  /// NotLinkable.
  std::optional<Path> carryOut(const BackwardPlan& plan, std::vector<VersionIndex>& impossible);

  /// Where names may be brought in, links each version that can be held to something that it can be
  /// held with: a link that no dependency asks for could bring in a name that no plan knows of.
  /// Throws NotLinkable if there is one. What the application fails with is left to the plans that
  /// hold it.
  void requireNoMoreLinks();

 private:
  std::optional<VersionBaseline> hold(SelectionView selection,
                                      std::vector<VersionIndex>& impossible);
  std::optional<VersionBaseline> combined(std::span<const NameIndex> names) const;
  std::pair<NameIndex, NameIndex> findDisagreeing(std::span<const NameIndex> names) const;
  std::vector<VersionIndex> withNeeds(SelectionView selection, std::vector<NameIndex> names) const;
  VersionIndex linkEach(SelectionView selection);
  void linkAll(SelectionView selection, NameIndex root);
  std::shared_ptr<LinkedMetamodel> link(SelectionView selection, NameIndex name);

  SelectionHost& host_;
  const DependencySpace& dependencies_;
  const SearchSpace& space_;
  const bool mayBringIn_ =
      std::any_of(space_.names.begin(), space_.names.end(),
                  [](const auto& name) { return name.absent != SearchSpace::none; });
  LinkedMetamodels linked_;                    // by name: of the selection that is being held
  VersionIndex underWay_ = SearchSpace::none;  // the last one that was linked, or is being

  // What was linked of each version, by what was linked for its dependencies.
  std::unordered_map<
      VersionIndex,
      std::vector<std::pair<std::vector<const LinkedMetamodel*>, std::shared_ptr<LinkedMetamodel>>>>
      known_;
};

}  // namespace tarn::evolution::pathfinder
