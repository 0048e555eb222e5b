#include "catalogue/explanation/hop_graph.hpp"

#include <algorithm>
#include <deque>
#include <utility>

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::SemVer;
using pathfinder::VersionId;
using pathfinder::VersionRepository;

namespace {

/// Visits versions breadth first; calls `onEdge` with each edge that leads to a version for the
/// first time. `isBackward` follows edges from their ends to their starts.
template <class IsUsed, class OnEdge>
void visit(const std::vector<std::vector<const HopGraph::Edge*>>& edges,
           std::deque<HopGraph::Vertex> waiting, bool isBackward, const IsUsed& isUsed,
           const OnEdge& onEdge) {
  std::vector<bool> isVisited(edges.size());
  for (const HopGraph::Vertex vertex : waiting) isVisited[vertex] = true;
  for (; !waiting.empty(); waiting.pop_front()) {
    for (const HopGraph::Edge* edge : edges[waiting.front()]) {
      const HopGraph::Vertex next = isBackward ? edge->from : edge->to;
      if (!isUsed(*edge) || isVisited[next]) continue;
      isVisited[next] = true;
      onEdge(*edge);
      waiting.push_back(next);
    }
  }
}

std::vector<std::vector<const HopGraph::Edge*>> adjacency(const HopGraph& graph, bool isBackward) {
  std::vector<std::vector<const HopGraph::Edge*>> result(graph.versions().size());
  for (const HopGraph::Edge& edge : graph.edges()) {
    result[isBackward ? edge.to : edge.from].push_back(&edge);
  }
  return result;
}

bool isInDirection(const HopGraph::Edge& edge) {
  return !edge.isAgainst;
}

std::deque<HopGraph::Vertex> verticesOf(const HopGraph& graph,
                                        const std::vector<VersionId>& versions) {
  std::deque<HopGraph::Vertex> result;
  for (const VersionId& version : versions) {
    if (const auto vertex = graph.find(version)) result.push_back(*vertex);
  }
  return result;
}

}  // namespace

HopGraph::HopGraph(Inquiry& inquiry, const std::u16string& name, Direction direction) {
  std::vector<std::pair<std::optional<SemVer>, Metamodel>> ordered;
  for (const CatalogueMetamodel& metamodel : inquiry.content().listMetamodels(name)) {
    ordered.emplace_back(inquiry.content().extractSemVer(metamodel.descriptor),
                         metamodel.descriptor);
  }
  std::stable_sort(ordered.begin(), ordered.end(), [](const auto& left, const auto& right) {
    if (!left.first || !right.first) return !left.first && right.first;
    return *left.first < *right.first;
  });
  for (auto& [semantic, metamodel] : ordered) versions_.push_back(std::move(metamodel));
  for (const Hop& hop : inquiry.content().listHops(name)) addEdge(inquiry, hop, direction);
}

void HopGraph::addEdge(Inquiry& inquiry, const Hop& hop, Direction direction) {
  const auto target = inquiry.content().getMetamodel(hop.name, hop.to);
  const auto from = find(hop.from);
  const auto to = target ? find(target->version) : std::nullopt;
  if (!from || !to) return;
  LinkableRepository& repository = inquiry.repository();
  if (repository.hidesUnlinkable() && !repository.isLinkable(*target).value_or(true)) return;
  const Direction hopDirection = inquiry.content().getDirection(versions_[*from], *target);
  edges_.push_back(
      {*from, *to, hop, VersionRepository::areDirectionsInconsistent(direction, hopDirection)});
}

std::optional<HopGraph::Vertex> HopGraph::find(const VersionId& version) const {
  const auto found =
      std::find_if(versions_.begin(), versions_.end(),
                   [&](const Metamodel& metamodel) { return metamodel.version == version; });
  if (found == versions_.end()) return std::nullopt;
  return static_cast<Vertex>(found - versions_.begin());
}

std::vector<bool> HopGraph::reachedFrom(const std::vector<VersionId>& starts) const {
  std::vector<bool> result(versions_.size());
  const std::deque<Vertex> vertices = verticesOf(*this, starts);
  for (const Vertex vertex : vertices) result[vertex] = true;
  visit(adjacency(*this, false), vertices, false, isInDirection,
        [&](const Edge& edge) { result[edge.to] = true; });
  return result;
}

std::vector<std::optional<std::size_t>> HopGraph::hopsTo(const VersionId& target) const {
  std::vector<std::optional<std::size_t>> result(versions_.size());
  const std::deque<Vertex> vertices = verticesOf(*this, {target});
  for (const Vertex vertex : vertices) result[vertex] = 0;
  visit(adjacency(*this, true), vertices, true, isInDirection,
        [&](const Edge& edge) { result[edge.from] = *result[edge.to] + 1; });
  return result;
}

std::vector<Hop> HopGraph::chainInAnyDirection(const std::vector<VersionId>& starts,
                                               const VersionId& target) const {
  std::vector<const Edge*> next(versions_.size());
  const std::deque<Vertex> targets = verticesOf(*this, {target});
  visit(
      adjacency(*this, true), targets, true, [](const Edge&) { return true; },
      [&](const Edge& edge) { next[edge.from] = &edge; });
  for (const Vertex start : verticesOf(*this, starts)) {
    std::vector<Hop> chain;
    for (const Edge* edge = next[start]; edge != nullptr; edge = next[edge->to]) {
      chain.push_back(edge->hop);
    }
    if (!chain.empty()) return chain;
  }
  return {};
}

}  // namespace tarn::evolution::catalogue
