#include "catalogue/explanation/inquiry.hpp"

#include "catalogue/explanation/candidate_combination.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionBaseline;

namespace {

constexpr std::size_t mostBaselines = 5'000;

}  // namespace

std::optional<Path> Inquiry::findPath(const std::vector<VersionBaseline>& from,
                                      const std::vector<VersionBaseline>& to, Direction direction) {
  ++questions_;
  // A path of another direction must not answer, nor a heavier one to another target.
  repository_.invalidatePathfindingCache();
  try {
    return repository_.findPath(from, to, direction);
  } catch (const ConflictingDependencies&) {
    repository_.hideUnlinkable();
    return repository_.findPath(from, to, direction);
  }
}

std::vector<VersionBaseline> Inquiry::combine(const SelectedMetamodels& selection) {
  std::vector<Candidates> candidates;
  for (const auto& [name, metamodel] : selection) {
    const LinkedMetamodels* linked = repository_.tryLink(metamodel);
    if (linked == nullptr) return {};
    candidates.push_back({name, *linked});
  }
  CombinedCandidates combined = combineCandidates(candidates, mostBaselines);
  hasCut_ |= combined.isCut;
  return std::move(combined.baselines);
}

}  // namespace tarn::evolution::catalogue
