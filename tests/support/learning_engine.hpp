#pragma once

#include <algorithm>
#include <optional>

#include "pathfinder/learning/learning_search.hpp"
#include "pathfinder/planning/plan_execution.hpp"
#include "pathfinder/planning/space_survey.hpp"

namespace test {

struct LearntAnswer {
  SearchAnswer answer;
  bool metConflict;  ///< the first plan could not be carried out
};

/// What planning by learning answers from the start; no value when the question is not for it. Any
/// other it has to settle.
inline std::optional<LearntAnswer> answerByLearning(const SearchQuestion& question) {
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
  const auto [isPlanned, plan] = learningPlanner()->plan({*space, compatibility, bounds});
  if (!isPlanned) return std::nullopt;
  constexpr auto unsettled = SearchAnswer::Verdict::Unsettled;
  const bool metConflict = plan && executePlan(question, *space, *plan).verdict == unsettled;
  auto answer = learningPlanner()->search(question, {*space, compatibility, bounds});
  return LearntAnswer{answer ? *std::move(answer) : SearchAnswer{unsettled}, metConflict};
}

}  // namespace test
