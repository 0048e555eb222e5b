#include "answers.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "pathfinder/learning/learning_search.hpp"
#include "pathfinder/path_search.hpp"
#include "pathfinder/planning/space_survey.hpp"
#include "pathfinder/repository_access.hpp"
#include "pathfinder/search/exhaustive_search.hpp"
#include "product_graph.hpp"

namespace bench {

using tarn::evolution::pathfinder::Direction;
using tarn::evolution::pathfinder::RepositoryAccess;
using tarn::evolution::pathfinder::SearchAnswer;
using tarn::evolution::pathfinder::SearchQuestion;
using tarn::evolution::pathfinder::VersionBaseline;

namespace {

/// What an engine makes of the catalogue's question between baselines.
template <class Engine>
SearchAnswer searchWith(CatalogueRepository& repository, const Engine& engine) {
  const auto& question = *repository.catalogue().question();
  const std::vector<VersionBaseline> sources = repository.combine(question.from);
  const std::vector<VersionBaseline> targets = repository.combine(question.to);
  if (sources.empty() || targets.empty()) return {};
  const auto direction = repository.computeDirection(sources.front(), targets.front());
  RepositoryAccess access(repository);
  SearchAnswer answer =
      engine(SearchQuestion{access, sources, targets, static_cast<Direction>(direction)});
  answer.source = answer.target = nullptr;  // of the lists above, which end here
  return answer;
}

SearchAnswer searchWithin(CatalogueRepository& repository, std::uint64_t budget) {
  return searchWith(repository, [&](const SearchQuestion& question) {
    return tarn::evolution::pathfinder::searchExhaustively(question, budget);
  });
}

SearchAnswer searchByLearning(const SearchQuestion& question) {
  using namespace tarn::evolution::pathfinder;
  const auto planner = learningPlanner();
  SpaceSurvey survey(question);
  survey.begin();
  while (survey.isFit() && survey.extend()) {
  }
  if (planner == nullptr || !survey.isFit()) return {SearchAnswer::Verdict::Unsettled};
  const auto space = survey.makeSpace();
  const Compatibility compatibility(*space);
  const AllVersionBounds bounds = computeVersionBounds(*space, compatibility);
  auto answer = planner->search(question, {*space, compatibility, bounds});
  return answer ? *std::move(answer) : SearchAnswer{SearchAnswer::Verdict::Unsettled};
}

/// All metamodels can move together, one version a step: every hop weighs one, and so does every
/// step of the metamodel that has furthest to go.
std::uint64_t weightOfAllTogether(const Catalogue& catalogue) {
  const auto& [from, to] = *catalogue.question();
  std::uint64_t hops = 0;
  std::uint64_t steps = 0;
  for (const auto& [name, target] : to) {
    const std::uint64_t distance = target.getSemVer().major - from.at(name).getSemVer().major;
    hops += distance;
    steps = std::max(steps, distance);
  }
  return hops + steps;
}

}  // namespace

Path askPath(CatalogueRepository& repository) {
  const auto& question = *repository.catalogue().question();
  return repository.findPath(question.from, question.to);
}

Path askExhaustiveEngine(CatalogueRepository& repository) {
  SearchAnswer answer = searchWithin(repository, tarn::evolution::pathfinder::unlimitedBudget);
  if (answer.verdict != SearchAnswer::Verdict::Found) return std::nullopt;
  return std::move(answer.steps);
}

Path askLearningEngine(CatalogueRepository& repository) {
  SearchAnswer answer = searchWith(repository, searchByLearning);
  if (answer.verdict == SearchAnswer::Verdict::Unsettled)
    throw std::runtime_error("learning does not settle the question");
  if (answer.verdict == SearchAnswer::Verdict::NoPath) return std::nullopt;
  return std::move(answer.steps);
}

bool isWithinBudget(CatalogueRepository& repository) {
  return searchWithin(repository, tarn::evolution::pathfinder::combinationBudget).verdict !=
         SearchAnswer::Verdict::Unsettled;
}

Weight weightOf(const CatalogueRepository& repository, const Path& path) {
  if (!path) return std::nullopt;
  std::uint64_t weight = 0;
  for (const auto& step : *path) weight += repository.getWeight(step.hops);
  return weight;
}

Weight knownWeight(const QuestionFile& file, const Catalogue& catalogue) {
  if (file.family == "blocked") return std::nullopt;
  if (file.family == "random") return ProductGraph(catalogue).leastWeight();
  return weightOfAllTogether(catalogue);
}

}  // namespace bench
