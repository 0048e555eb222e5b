#include "pathfinder/version_repository.hpp"

#include <algorithm>
#include <atomic>
#include <utility>

#include "messages/report_exception.hpp"
#include "pathfinder/limits/linking_budget.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/linking/linked_metamodel_creation.hpp"
#include "pathfinder/linking/selection_combination.hpp"
#include "pathfinder/path_search.hpp"
#include "pathfinder/repository_access.hpp"
#include "pathfinder/search/path_cache.hpp"
#include "pathfinder/search/step_generation.hpp"
#include "pathfinder/search/step_weight.hpp"
#include "pathfinder/search/target_baseline.hpp"
#include "pathfinder/values/unordered_hash.hpp"

namespace tarn::evolution::pathfinder {

struct VersionRepository::Caches {
  LinkedMetamodelCache linkedMetamodelCache;
  PathCache pathCache;
  std::atomic<RequirementSource*> requirements = nullptr;
};

std::size_t VersionRepository::KeyHasherVersionBaselineUnordered::operator()(
    const VersionBaseline& baseline) const noexcept {
  return UnorderedHash()(baseline);
}

VersionRepository::VersionRepository() : caches_(std::make_unique<Caches>()) {}

VersionRepository::~VersionRepository() = default;

// Hooks.

std::optional<SemVer> VersionRepository::getEquivalentSemVer(
    const std::u16string& /*metamodelName*/, const std::u16string& /*versionText*/) {
  return std::nullopt;
}

std::optional<Metamodel> VersionRepository::getMetamodel(const std::u16string& name,
                                                         const VersionId& version) {
  VersionRange range = VersionRange::singleVersion(version);
  if (!version.isSemVer()) {
    if (const auto equivalent = getEquivalentSemVer(name, version.getText())) {
      range = VersionRange::singleVersion(*equivalent);
    }
  }
  std::vector<Metamodel> candidates;
  findMetamodels(name, range, candidates);
  if (candidates.empty()) return std::nullopt;
  return std::move(candidates.front());
}

void VersionRepository::loadMetamodel(const std::shared_ptr<LinkedMetamodel>& /*linked*/) {}

void VersionRepository::useRequirements(RequirementSource& source) noexcept {
  caches_->requirements = &source;
}

bool VersionRepository::hasRequirements() const noexcept {
  return caches_->requirements != nullptr;
}

std::vector<PeerRequirement> VersionRepository::getRequirements(const Metamodel& metamodel) {
  std::vector<PeerRequirement> result;
  RequirementSource* const source = caches_->requirements;
  if (source != nullptr) source->findRequirements(metamodel, result);
  return result;
}

const ResolvedRequirements& VersionRepository::requirementsOf(const Metamodel& metamodel) {
  getLinkedMetamodels(metamodel);
  return caches_->linkedMetamodelCache.requirementsOf(metamodel);
}

// Paths and steps.

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(
    const std::vector<VersionBaseline>& from, const std::vector<VersionBaseline>& to,
    Direction direction) {
  const SearchWatch::Search search;
  RepositoryAccess access(*this);
  return answerPathQuestion(access, caches_->pathCache, from, to, pathfinder::Direction(direction));
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(const VersionBaseline& from,
                                                                    const VersionBaseline& to) {
  if (from.includes(to)) return std::vector<BaselineHop>();
  return findPath(std::vector{from}, std::vector{to}, computeDirection(from, to));
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(
    const std::unordered_map<std::u16string, VersionId>& from,
    const std::unordered_map<std::u16string, VersionId>& to) {
  if (from == to) return std::vector<BaselineHop>();
  const SearchWatch::Search search;
  RepositoryAccess access(*this);
  return answerSelectionQuestion(access, caches_->pathCache, {from, to});
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(
    const std::vector<VersionBaseline>& from,
    const std::unordered_map<std::u16string, VersionId>& to) {
  const SearchWatch::Search search;
  RepositoryAccess access(*this);
  SelectionCombination combination(access, to.size());
  std::vector<VersionBaseline> targets = combination.combine(to);
  if (targets.empty()) return std::nullopt;
  const bool alreadyThere =
      std::find_first_of(targets.begin(), targets.end(), from.begin(), from.end()) != targets.end();
  if (alreadyThere) return std::vector<BaselineHop>();
  const Direction direction =
      from.empty() ? Unknown : computeDirection(from.front(), targets.front());
  return answerPathQuestion(access, caches_->pathCache, from, std::move(targets),
                            pathfinder::Direction(direction), combination.known());
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(
    const std::vector<VersionBaseline>& from, const std::vector<VersionBaseline>& to,
    Direction direction, const SearchLimits& limits) {
  const SearchWatch watch(limits);
  return findPath(from, to, direction);
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(const VersionBaseline& from,
                                                                    const VersionBaseline& to,
                                                                    const SearchLimits& limits) {
  const SearchWatch watch(limits);
  return findPath(from, to);
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(
    const std::unordered_map<std::u16string, VersionId>& from,
    const std::unordered_map<std::u16string, VersionId>& to, const SearchLimits& limits) {
  const SearchWatch watch(limits);
  return findPath(from, to);
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(
    const std::vector<VersionBaseline>& from,
    const std::unordered_map<std::u16string, VersionId>& to, const SearchLimits& limits) {
  const SearchWatch watch(limits);
  return findPath(from, to);
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPathInDirection(
    const std::unordered_map<std::u16string, VersionId>& from,
    const std::unordered_map<std::u16string, VersionId>& to, Direction direction,
    const SearchLimits& limits) {
  const SearchWatch watch(limits);
  if (from == to) return std::vector<BaselineHop>();
  const SearchWatch::Search search;
  RepositoryAccess access(*this);
  PathCache none;  // paths in the cache do not tell their direction
  return answerSelectionQuestion(access, none, {from, to, pathfinder::Direction(direction)});
}

// Weights and the cache.

unsigned long VersionRepository::getWeight(
    const std::unordered_map<std::u16string, Hop>& hops) const {
  return weightOf(hops);
}

void VersionRepository::invalidatePathfindingCache() {
  caches_->pathCache.clear();
}

std::vector<BaselineHop> VersionRepository::getStepsFrom(const VersionBaseline& from,
                                                         Direction direction) {
  RepositoryAccess access(*this);
  return StepGeneration(access, from, pathfinder::Direction(direction)).runReserved();
}

std::vector<VersionBaseline> VersionRepository::createTargetBaseline(
    const VersionBaseline& baseline, const std::unordered_map<std::u16string, Hop>& hops) {
  RepositoryAccess access(*this);
  return findTargetBaselines(access, baseline, hops);
}

// Selections and linked metamodels.

std::vector<VersionBaseline> VersionRepository::combine(
    const std::unordered_map<std::u16string, VersionId>& selection) {
  RepositoryAccess access(*this);
  return SelectionCombination(access, selection.size()).combine(selection);
}

std::vector<VersionBaseline> VersionRepository::combine(
    const std::unordered_map<std::u16string, Metamodel>& selection) {
  std::vector<SelectedMetamodel> inMapOrder;
  inMapOrder.reserve(selection.size());
  for (const auto& [name, metamodel] : selection) inMapOrder.push_back({&name, &metamodel});
  RepositoryAccess access(*this);
  return combineMetamodels(access, inMapOrder);
}

std::vector<VersionBaseline> VersionRepository::combine(
    const std::unordered_map<std::u16string, VersionId>& selection, const SearchLimits& limits) {
  const SearchWatch watch(limits);
  return combine(selection);
}

std::optional<std::vector<VersionBaseline>> VersionRepository::tryCombine(
    const std::unordered_map<std::u16string, VersionId>& selection) {
  try {
    const LinkingBudget budget(linkingBudgetFor(selection.size()));
    return combine(selection);
  } catch (const LinkingBudget::Spent&) {
    return std::nullopt;
  }
}

const std::vector<std::shared_ptr<LinkedMetamodel>>& VersionRepository::getLinkedMetamodels(
    const Metamodel& metamodel) {
  LinkedMetamodelCache& cache = caches_->linkedMetamodelCache;
  if (const LinkedMetamodels* known = cache.find(metamodel)) return *known;
  RepositoryAccess access(*this);
  return LinkedMetamodelCreation(access, cache, accessTag()).create(metamodel);
}

const std::vector<std::shared_ptr<LinkedMetamodel>>& VersionRepository::getLinkedMetamodels(
    const std::u16string& name, const VersionId& version) {
  const std::optional<Metamodel> metamodel = getMetamodel(name, version);
  if (!metamodel) tarn::reportException(tarn_evo::messages::ConflictingDependencies());
  return getLinkedMetamodels(*metamodel);
}

std::shared_ptr<LinkedMetamodel> VersionRepository::linkAlone(
    const Metamodel& metamodel,
    const std::unordered_map<std::u16string, std::vector<std::shared_ptr<LinkedMetamodel>>>&
        chosen) {
  RepositoryAccess access(*this);
  return LinkedMetamodelCreation(access, caches_->linkedMetamodelCache, accessTag())
      .createAlone(metamodel, chosen);
}

void VersionRepository::createLinkedMetamodels(const Metamodel& metamodel) {
  RepositoryAccess access(*this);
  LinkedMetamodelCreation(access, caches_->linkedMetamodelCache, accessTag()).create(metamodel);
}

// Versions and directions.

bool VersionRepository::includes(const VersionRange& range, const Metamodel& metamodel) {
  if (range.includes(metamodel.version)) return true;
  if (!range.isSemVerRange() || metamodel.version.isSemVer()) return false;
  const auto equivalent = getEquivalentSemVer(metamodel.name, metamodel.version.getText());
  return equivalent && range.includes(VersionId(*equivalent));
}

std::optional<SemVer> VersionRepository::extractSemVer(const Metamodel& metamodel) {
  if (metamodel.version.isSemVer()) return metamodel.version.getSemVer();
  return getEquivalentSemVer(metamodel.name, metamodel.version.getText());
}

bool VersionRepository::areDirectionsInconsistent(Direction a, Direction b) {
  return areOpposite(pathfinder::Direction(a), pathfinder::Direction(b));
}

std::string VersionRepository::getDirectionString(Direction direction) {
  return nameOf(pathfinder::Direction(direction));
}

VersionRepository::Direction VersionRepository::getDirection(const Metamodel& from,
                                                             const Metamodel& to) {
  const auto directionOf = [](const SemVer& before, const SemVer& after) {
    if (before == after) return Equal;
    return before < after ? Forward : Backward;
  };
  if (from.version.isSemVer() && to.version.isSemVer()) {
    return directionOf(from.version.getSemVer(), to.version.getSemVer());
  }
  if (from == to) return Equal;
  const std::optional<SemVer> before = extractSemVer(from);
  const std::optional<SemVer> after = extractSemVer(to);
  if (!before && !after) return Unknown;
  if (!before) return Forward;
  if (!after) return Backward;
  return directionOf(*before, *after);
}

VersionRepository::Direction VersionRepository::computeDirection(const VersionBaseline& from,
                                                                 const VersionBaseline& to) {
  Direction result = Unknown;
  for (const auto& [name, before] : from.metamodels) {
    const auto after = to.metamodels.find(name);
    if (after == to.metamodels.end() || !before || !after->second) continue;
    const Direction direction = getDirection(*before, *after->second);
    if (direction == Equal || direction == Unknown) continue;
    if (areDirectionsInconsistent(result, direction)) return Unknown;
    result = direction;
  }
  return result;
}

std::optional<VersionRepository::Direction> VersionRepository::findDirection(
    const std::unordered_map<std::u16string, VersionId>& from,
    const std::unordered_map<std::u16string, VersionId>& to, const SearchLimits& limits) {
  const SearchWatch watch(limits);
  RepositoryAccess access(*this);
  const auto found = directionOfSelectionQuestion(access, {from, to});
  if (!found) return std::nullopt;
  return Direction(*found);
}

}  // namespace tarn::evolution::pathfinder
