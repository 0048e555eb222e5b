#pragma once

#include <algorithm>
#include <optional>

#include "pathfinder/learning/learning_search.hpp"
#include "pathfinder/learning/unrolling.hpp"
#include "pathfinder/planning/plan_execution.hpp"
#include "pathfinder/planning/space_survey.hpp"

namespace test {

struct LearntAnswer {
  SearchAnswer answer;
  bool metConflict;  ///< the first plan could not be carried out
};

/// Whether the hops of a name form a cycle.
inline bool isAnyCyclic(const SearchSpace& space) {
  return std::any_of(space.names.begin(), space.names.end(), [&](const SearchSpace::Name& name) {
    const std::size_t count = name.end - name.first;
    const std::vector<bool> all(count, true);
    VersionGraph graph{{}, all, all, std::vector<std::uint64_t>(count)};
    for (VersionIndex version = name.first; version < name.end; ++version) {
      auto& onward = graph.onward.emplace_back();
      for (const SearchSpace::Move& move : space.versions[version].moves) {
        if (move.target != version) onward.push_back({move.target - name.first, 1});
      }
    }
    return Unrolling(graph).isCyclic();
  });
}

/// What planning by learning answers from the start; no value when the question is not for it, or
/// when hops form cycles and it leaves it to others. Any other it has to settle.
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
  const auto [isPlanned, plan] = learningPlanner()->plan({*space, compatibility, bounds}, {});
  if (!isPlanned) return std::nullopt;
  constexpr auto unsettled = SearchAnswer::Verdict::Unsettled;
  const bool metConflict = plan && executePlan(question, *space, *plan).verdict == unsettled;
  auto answer = learningPlanner()->search(question, {*space, compatibility, bounds});
  if (!answer && isAnyCyclic(*space)) return std::nullopt;
  return LearntAnswer{answer ? *std::move(answer) : SearchAnswer{unsettled}, metConflict};
}

}  // namespace test
