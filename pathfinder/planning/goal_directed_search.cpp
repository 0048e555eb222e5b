#include "pathfinder/planning/goal_directed_search.hpp"

#include "messages/trace.hpp"
#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/plan_execution.hpp"
#include "pathfinder/planning/plan_search.hpp"
#include "pathfinder/planning/space_survey.hpp"
#include "pathfinder/planning/version_bounds.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::traceValue;

namespace {

/// The selections of the sources that a path can start from.
std::vector<VersionSelection> startingSelections(const SearchSpace& space) {
  std::vector<VersionSelection> result;
  for (const VersionSelection& source : space.sources) {
    if (!source.empty()) result.push_back(source);
  }
  return result;
}

/// Where all names are bystanders, a source includes a target or none ever will.
SearchAnswer answerWithoutSteps(const SearchQuestion& question) {
  for (const VersionBaseline& source : question.sources) {
    const VersionBaseline* target = question.targetIn(source);
    if (target == nullptr) continue;
    traceValue("Reached target");
    return {SearchAnswer::Verdict::Found, {}, &source, target};
  }
  traceValue("Exhausted search");
  return {};
}

}  // namespace

SearchAnswer searchGoalDirected(const SearchQuestion& question) {
  const auto space = surveySearchSpace(question);
  if (!space) return {SearchAnswer::Verdict::Unsettled};
  if (space->names.empty()) return answerWithoutSteps(question);
  const auto sources = startingSelections(*space);
  const Compatibility compatibility(*space);
  const AllVersionBounds bounds = computeVersionBounds(*space, compatibility, sources);
  const PlanningGround ground{*space, compatibility, bounds};
  const auto plan = planBackward(ground, sources, space->targets);
  if (!plan) {
    traceValue("Exhausted search");
    return {};
  }
  SearchAnswer answer = executePlan(question, *space, *plan);
  if (answer.verdict == SearchAnswer::Verdict::Found) traceValue("Reached target");
  return answer;
}

}  // namespace tarn::evolution::pathfinder
