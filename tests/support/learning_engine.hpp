#pragma once

#include <optional>

#include "pathfinder/learning/learning_search.hpp"
#include "pathfinder/planning/space_survey.hpp"

namespace test {

/// What planning by learning answers from the start; no value when the question is not for it.
inline std::optional<SearchAnswer> answerByLearning(const SearchQuestion& question) {
  using namespace tarn::evolution::pathfinder;
  if (std::any_of(question.sources.begin(), question.sources.end(),
                  [&](const auto& source) { return question.targetIn(source) != nullptr; })) {
    return std::nullopt;
  }
  SpaceSurvey survey(question);
  survey.begin();
  while (survey.isFit() && survey.extend()) {
  }
  if (!survey.isFit()) return std::nullopt;
  const auto space = survey.makeSpace();
  const Compatibility compatibility(*space);
  const AllVersionBounds bounds = computeVersionBounds(*space, compatibility);
  return learningPlanner()->search(question, {*space, compatibility, bounds});
}

}  // namespace test
