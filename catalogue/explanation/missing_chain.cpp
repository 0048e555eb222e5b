#include "catalogue/explanation/missing_chain.hpp"

#include <algorithm>

#include "catalogue/model/admitted_versions.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::Metamodel;
using pathfinder::VersionId;

namespace {

template <class IsChosen>
std::vector<VersionId> versionsWhere(const HopGraph& graph, const IsChosen& isChosen) {
  std::vector<VersionId> result;
  for (HopGraph::Vertex vertex = 0; vertex < graph.versions().size(); ++vertex) {
    if (isChosen(vertex)) result.push_back(graph.versions()[vertex].version);
  }
  return result;
}

/// All versions in the content that depend on a version from which the target can be reached.
std::vector<NamedVersion> findDependents(BrowsableRepository& content, const HopGraph& graph,
                                         const Metamodel& target) {
  const auto hopsLeft = graph.hopsTo(target.version);
  const auto bringsIn = [&](const Dependency& dependency) {
    if (dependency.name != target.name) return false;
    const auto admitted = listAdmitted(content, dependency.name, dependency.range);
    return std::any_of(admitted.begin(), admitted.end(), [&](const Metamodel& version) {
      const auto vertex = graph.find(version.version);
      return vertex && hopsLeft[*vertex];
    });
  };
  std::vector<NamedVersion> result;
  for (const std::u16string& name : content.listNames()) {
    for (const auto& metamodel : content.listMetamodels(name)) {
      const pathfinder::Metamodel& descriptor = metamodel.descriptor;
      const auto& dependencies = descriptor.dependencies;
      if (std::any_of(dependencies.begin(), dependencies.end(), bringsIn)) {
        result.push_back({descriptor.name, descriptor.version});
      }
    }
  }
  return result;
}

/// The shortest way over the gap, by the number of versions between; of equal ones the first.
std::optional<pathfinder::Hop> findMissingHop(
    const std::u16string& name, const HopGraph& graph, const std::vector<bool>& isReached,
    const std::vector<std::optional<std::size_t>>& hopsLeft, Direction direction) {
  const std::size_t size = graph.versions().size();
  std::size_t narrowest = 2 * size;
  std::optional<pathfinder::Hop> result;
  for (HopGraph::Vertex from = 0; from < size; ++from) {
    if (!isReached[from]) continue;
    for (HopGraph::Vertex to = 0; to < size; ++to) {
      if (!hopsLeft[to]) continue;
      const bool isForward = from < to;
      const bool isAgainst = direction == (isForward ? Direction::Backward : Direction::Forward);
      const std::size_t width = (isForward ? to - from : from - to) + (isAgainst ? size : 0);
      if (width >= narrowest) continue;
      narrowest = width;
      result.emplace(name, graph.versions()[from].version, graph.versions()[to].version, false);
    }
  }
  return result;
}

}  // namespace

std::vector<MissingChain> findMissingChains(const PosedQuestion& question) {
  std::vector<MissingChain> result;
  for (const auto& [name, goal] : question.goals) {
    const HopGraph& graph = question.graphs->of(name);
    const std::vector<VersionId>& starts = question.starts.at(name);
    const std::vector<bool> isReached = graph.reachedFrom(starts);
    const auto target = graph.find(goal.version);
    if (target && isReached[*target]) continue;
    const auto hopsLeft = graph.hopsTo(goal.version);
    MissingChain missing{.target = {name, goal.version},
                         .isHeld = !question.newcomers.contains(name)};
    missing.starts = versionsWhere(graph, [&](HopGraph::Vertex vertex) {
      const VersionId& version = graph.versions()[vertex].version;
      return std::find(starts.begin(), starts.end(), version) != starts.end();
    });
    missing.reached = versionsWhere(graph, [&](auto vertex) { return bool{isReached[vertex]}; });
    missing.leading =
        versionsWhere(graph, [&](auto vertex) { return hopsLeft[vertex].has_value(); });
    missing.missingHop = findMissingHop(name, graph, isReached, hopsLeft, question.direction);
    missing.chainInAnyDirection = graph.chainInAnyDirection(starts, goal.version);
    if (starts.empty()) {
      missing.dependents = findDependents(question.inquiry->content(), graph, goal);
    }
    result.push_back(std::move(missing));
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
