#include "pathfinder/planning/survey_failures.hpp"

#include <algorithm>
#include <unordered_map>

#include "pathfinder/planning/survey_state.hpp"

namespace tarn::evolution::pathfinder {

bool SurveyFailures::anyButConflicts() const {
  return !std::all_of(all_.begin(), all_.end(),
                      [](const Failure& failure) { return failure.isConflict; });
}

void SurveyFailures::assumeBest() const {
  for (const Failure& failure : all_) failure.version->isAssumedBest |= !failure.isConflict;
}

void SurveyFailures::throwFirstOf(const std::vector<VersionIndex>& versions) const {
  for (const Failure& failure : all_) {
    const bool isAsked =
        failure.version->isAssumedBest && failure.attempt != SurveyAttempt::Compare &&
        std::find(versions.begin(), versions.end(), failure.version->index) != versions.end();
    if (isAsked) std::rethrow_exception(failure.exception);
  }
}

std::vector<SurveyedFault> faultsOf(const SurveyState& state) {
  std::unordered_map<const SurveyedVersion*, std::exception_ptr> unlinkable;
  std::vector<SurveyedFault> result;
  for (const auto& failure : state.failures.all_) {
    if (failure.attempt == SurveyAttempt::Link) {
      unlinkable.emplace(failure.version, failure.exception);
    } else if (failure.attempt == SurveyAttempt::AskForHops) {
      result.push_back({failure.version, failure.exception});
    }
  }
  for (const SurveyedVersion& version : state.versions) {
    if (version.losesHop) result.push_back({&version, nullptr});
    if (unlinkable.empty()) continue;
    for (const SurveyedHop& hop : state.targetsOf(version)) {
      const auto failure = unlinkable.find(hop.target);
      if (failure != unlinkable.end()) result.push_back({&version, failure->second});
    }
  }
  std::erase_if(result,
                [](const SurveyedFault& fault) { return fault.holding->linked == nullptr; });
  std::stable_sort(result.begin(), result.end(), [](const auto& left, const auto& right) {
    return left.holding->distance < right.holding->distance;
  });
  return result;
}

}  // namespace tarn::evolution::pathfinder
