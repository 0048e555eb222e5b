#include "pathfinder/planning/survey_distances.hpp"

#include <algorithm>

#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

std::optional<std::uint64_t> SurveyDistances::distanceFor(const SurveyedName& name,
                                                          std::size_t target) const {
  if (!state_.isHeldFromStart(name)) return 0;
  std::optional<std::uint64_t> least;
  for (const SurveyedVersion* version : name.versions) {
    if (least && *least <= version->distance) continue;
    if (suits(*version, target)) least = version->distance;
  }
  return least;
}

std::uint64_t SurveyDistances::leastTotal() const {
  std::uint64_t least = SurveyedVersion::unreached;
  for (std::size_t target = 0; target < state_.targets.size(); ++target) {
    std::uint64_t hops = 0;
    std::uint64_t steps = 0;
    bool isWithinReach = state_.targets[target].isPossible;
    for (const auto& [text, name] : state_.names) {
      if (name.versions.empty()) continue;
      const auto distance = distanceFor(name, target);
      isWithinReach &= distance.has_value();
      if (!isWithinReach) break;
      hops += *distance;
      steps = std::max(steps, ordinaryPart(*distance));
    }
    if (isWithinReach) least = std::min(least, hops + steps);
  }
  return least;
}

std::uint64_t SurveyDistances::radiusFor(const SurveyedName& name, std::uint64_t slack) const {
  std::uint64_t farthest = 0;
  for (std::size_t target = 0; target < state_.targets.size(); ++target) {
    farthest = std::max(farthest, distanceFor(name, target).value_or(0));
  }
  return farthest + slack;
}

/// Whether a plan that ends with this version may end at a target.
bool SurveyDistances::suits(const SurveyedVersion& version, std::size_t target) const {
  const LinkedMetamodel* wanted = state_.heldBy(target, *version.name->text);
  if (wanted != nullptr) return *version.descriptor == static_cast<const Metamodel&>(*wanted);
  if (version.linked == nullptr) return version.isUnlinkable;
  return std::any_of(version.linked->begin(), version.linked->end(),
                     [&](const auto& variant) { return agrees(*variant, target); });
}

bool SurveyDistances::agrees(const LinkedMetamodel& variant, std::size_t target) const {
  return std::all_of(variant.linkedMetamodels.begin(), variant.linkedMetamodels.end(),
                     [&](const auto& link) {
                       const LinkedMetamodel* held = state_.heldBy(target, link.first);
                       return held == nullptr || held == link.second.get();
                     });
}

}  // namespace tarn::evolution::pathfinder
