#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/explanation/inquiry.hpp"

namespace tarn::evolution::catalogue {

/// The versions of one metamodel and the hops between them, as if it could move alone. Versions are
/// numbered in ascending order; text versions without an equivalent come first, in the catalogue's
/// order.
class HopGraph {
 public:
  using Vertex = std::size_t;

  struct Edge {
    Vertex from;
    Vertex to;
    pathfinder::Hop hop;
    bool isAgainst;  ///< goes against the direction
  };

  /// Leaves out the hops to versions that cannot be linked if the inquiry does.
  HopGraph(Inquiry& inquiry, const std::u16string& name, Direction direction);

  const std::vector<pathfinder::Metamodel>& versions() const { return versions_; }
  const std::vector<Edge>& edges() const { return edges_; }  ///< in the catalogue's order
  std::optional<Vertex> find(const pathfinder::VersionId& version) const;

  /// Which versions hops in the direction lead to from some versions, these among them.
  std::vector<bool> reachedFrom(const std::vector<pathfinder::VersionId>& starts) const;

  /// How many hops in the direction it takes at least from each version to `target`.
  std::vector<std::optional<std::size_t>> hopsTo(const pathfinder::VersionId& target) const;

  /// A shortest chain from one of the starts to `target` of hops in any direction; empty when there
  /// is none.
  std::vector<pathfinder::Hop> chainInAnyDirection(const std::vector<pathfinder::VersionId>& starts,
                                                   const pathfinder::VersionId& target) const;

 private:
  void addEdge(Inquiry& inquiry, const pathfinder::Hop& hop, Direction direction);

  std::vector<pathfinder::Metamodel> versions_;
  std::vector<Edge> edges_;
};

/// The hop graphs of a question's metamodels, made on first demand.
class HopGraphs {
 public:
  HopGraphs(Inquiry& inquiry, Direction direction) : inquiry_(inquiry), direction_(direction) {}

  const HopGraph& of(const std::u16string& name) {
    return graphs_.try_emplace(name, inquiry_, name, direction_).first->second;
  }

 private:
  Inquiry& inquiry_;
  Direction direction_;
  std::map<std::u16string, HopGraph> graphs_;
};

}  // namespace tarn::evolution::catalogue
