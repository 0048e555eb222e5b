#include "pathfinder/version_repository.hpp"

#include <algorithm>
#include <functional>
#include <utility>

#include "messages/report_exception.hpp"
#include "pathfinder/hashing.hpp"
#include "pathfinder/linked_metamodel_creation.hpp"
#include "pathfinder/path_cache.hpp"
#include "pathfinder/path_search.hpp"
#include "pathfinder/selection_combination.hpp"
#include "pathfinder/step_generation.hpp"
#include "pathfinder/step_weight.hpp"
#include "pathfinder/target_baseline.hpp"

namespace tarn::evolution::pathfinder {

struct VersionRepository::Caches {
  LinkedMetamodelCache linkedMetamodelCache;
  PathCache pathCache;
};

std::size_t VersionRepository::KeyHasherVersionBaselineUnordered::operator()(
    const VersionBaseline& baseline) const noexcept {
  std::size_t result = 0;
  for (const auto& [name, linked] : baseline.metamodels) {
    result ^= linked ? hashNameAndVersion(linked->name, linked->version)
                     : std::hash<std::u16string>()(name) + 0x9e3779b9;
  }
  return result;
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

// Paths and steps.

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(
    const std::vector<VersionBaseline>& from, const std::vector<VersionBaseline>& to,
    Direction direction) {
  return answerPathQuestion(*this, caches_->pathCache, from, to, direction);
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(const VersionBaseline& from,
                                                                    const VersionBaseline& to) {
  if (from.includes(to)) return std::vector<BaselineHop>();
  return answerPathQuestion(*this, caches_->pathCache, std::vector{from}, std::vector{to},
                            computeDirection(from, to));
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(
    const std::unordered_map<std::u16string, VersionId>& from,
    const std::unordered_map<std::u16string, VersionId>& to) {
  if (from == to) return std::vector<BaselineHop>();
  SelectionCombination combination(*this, from.size() + to.size());
  std::vector<VersionBaseline> sources = combination.combine(from);
  if (sources.empty()) return std::nullopt;
  std::vector<VersionBaseline> targets = combination.combine(to);
  if (targets.empty()) return std::nullopt;
  const Direction direction = computeDirection(sources.front(), targets.front());
  return answerPathQuestion(*this, caches_->pathCache, std::move(sources), std::move(targets),
                            direction, combination.known());
}

std::optional<std::vector<BaselineHop>> VersionRepository::findPath(
    const std::vector<VersionBaseline>& from,
    const std::unordered_map<std::u16string, VersionId>& to) {
  SelectionCombination combination(*this, to.size());
  std::vector<VersionBaseline> targets = combination.combine(to);
  if (targets.empty()) return std::nullopt;
  const bool alreadyThere =
      std::find_first_of(targets.begin(), targets.end(), from.begin(), from.end()) != targets.end();
  if (alreadyThere) return std::vector<BaselineHop>();
  const Direction direction =
      from.empty() ? Unknown : computeDirection(from.front(), targets.front());
  return answerPathQuestion(*this, caches_->pathCache, from, std::move(targets), direction,
                            combination.known());
}

unsigned long VersionRepository::getWeight(
    const std::unordered_map<std::u16string, Hop>& hops) const {
  std::uint64_t hopWeights = 0;
  for (const auto& [name, hop] : hops) hopWeights += hopWeight(hop.expensive);
  return stepWeight(hopWeights);
}

void VersionRepository::invalidatePathfindingCache() {
  caches_->pathCache.clear();
}

std::vector<BaselineHop> VersionRepository::getStepsFrom(const VersionBaseline& from,
                                                         Direction direction) {
  return StepGeneration(*this, from, direction).runReserved();
}

std::vector<VersionBaseline> VersionRepository::createTargetBaseline(
    const VersionBaseline& baseline, const std::unordered_map<std::u16string, Hop>& hops) {
  return findTargetBaselines(*this, baseline, hops);
}

// Selections and linked metamodels.

std::vector<VersionBaseline> VersionRepository::combine(
    const std::unordered_map<std::u16string, VersionId>& selection) {
  return SelectionCombination(*this, selection.size()).combine(selection);
}

std::vector<VersionBaseline> VersionRepository::combine(
    const std::unordered_map<std::u16string, Metamodel>& selection) {
  std::vector<SelectedMetamodel> inMapOrder;
  inMapOrder.reserve(selection.size());
  for (const auto& [name, metamodel] : selection) inMapOrder.push_back({&name, &metamodel});
  return combineMetamodels(*this, inMapOrder);
}

const std::vector<std::shared_ptr<LinkedMetamodel>>& VersionRepository::getLinkedMetamodels(
    const Metamodel& metamodel) {
  LinkedMetamodelCache& cache = caches_->linkedMetamodelCache;
  if (const LinkedMetamodels* known = cache.find(metamodel)) return *known;
  return LinkedMetamodelCreation(*this, cache, accessTag()).create(metamodel);
}

const std::vector<std::shared_ptr<LinkedMetamodel>>& VersionRepository::getLinkedMetamodels(
    const std::u16string& name, const VersionId& version) {
  const std::optional<Metamodel> metamodel = getMetamodel(name, version);
  if (!metamodel) tarn::reportException(tarn_evo::messages::ConflictingDependencies());
  return getLinkedMetamodels(*metamodel);
}

void VersionRepository::createLinkedMetamodels(const Metamodel& metamodel) {
  LinkedMetamodelCreation(*this, caches_->linkedMetamodelCache, accessTag()).create(metamodel);
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
  return (a == Forward && b == Backward) || (a == Backward && b == Forward);
}

std::string VersionRepository::getDirectionString(Direction direction) {
  switch (direction) {
    case Equal:
      return "Equal";
    case Forward:
      return "Forward";
    case Backward:
      return "Backward";
    case Unknown:
      return "Unknown";
  }
  return {};
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

}  // namespace tarn::evolution::pathfinder
