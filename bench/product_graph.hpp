#pragma once

#include <boost/graph/compressed_sparse_row_graph.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "answers.hpp"

namespace bench {

/// The graph that the path finder never builds: every consistent selection of one version for each
/// metamodel is a vertex, and every lockstep step from one to another an edge. Boost.Graph finds
/// the least-weight path in it.
///
/// For catalogues whose question names every metamodel on both sides, and that have one descriptor
/// for each version. Takes every hop, whatever its direction.
class ProductGraph {
 public:
  explicit ProductGraph(const Catalogue& catalogue);

  /// No value: no path. Visits the whole graph.
  Weight leastWeight() const;

  std::size_t vertexCount() const { return num_vertices(graph_); }
  std::size_t edgeCount() const { return num_edges(graph_); }

 private:
  struct Edge {
    std::uint64_t weight;
  };

  using Graph = boost::compressed_sparse_row_graph<boost::directedS, boost::no_property, Edge,
                                                   boost::no_property, std::uint32_t>;

  Graph graph_;
  std::optional<std::uint32_t> source_;  // no value: not consistent
  std::optional<std::uint32_t> target_;
};

/// Whether all combinations of staying and hopping, from every selection, are few enough to try
/// them all. Their number bounds the edges of the product graph, and what the exhaustive engine
/// tries.
bool isProductSmall(const Catalogue& catalogue);

}  // namespace bench
