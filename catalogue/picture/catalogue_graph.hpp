#pragma once

#include <cstddef>
#include <iosfwd>
#include <stdexcept>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The versions of some metamodels with the hops between them and what they need of each other. All
/// texts are UTF-8 as the catalogue has them.
struct TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueGraph {
  /// A version of a metamodel, or a range of them that others need.
  struct Node {
    std::string label;
    bool isRange;
    std::string note = {};  ///< what is told of the version
  };

  /// A metamodel. Its versions come first, in the catalogue's order, then its ranges.
  struct Group {
    std::string name;
    std::vector<Node> nodes;
  };

  struct End {
    std::size_t group;
    std::size_t node;
  };

  struct HopEdge {
    End from;
    End to;
    bool isExpensive;
    std::string note = {};  ///< what is told of the hop
  };

  /// From a version to what it needs: the one version that satisfies it, or a range.
  struct DependencyEdge {
    End from;
    End to;
    std::string note = {};  ///< what is told of the dependency
  };

  std::vector<Group> groups;  ///< by ascending name
  std::vector<HopEdge> hops;
  std::vector<DependencyEdge> dependencies;
};

/// A graph would be larger than asked for. `what()` says by how much.
class TARN_EVOLUTION_CATALOGUE_EXPORT GraphTooLarge : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Which part of a catalogue a graph shows.
struct GraphRequest {
  std::vector<std::u16string> names;  ///< none: all metamodels
  bool withDependencies = false;      ///< add the versions that those shown need, directly or not
  std::size_t limit = 0;              ///< of versions, ranges, hops and dependencies together
};

/// The graph. What a shown version needs of a metamodel that is not shown is left out. Throws
/// std::invalid_argument for a name that the repository does not know, and GraphTooLarge.
TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueGraph makeGraph(BrowsableRepository& repository,
                                                         const GraphRequest& request);

/// DOT, for Graphviz: a cluster for each metamodel, hops as solid edges, dependencies dashed.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeGraphDot(const CatalogueGraph& graph, std::ostream& out);

/// The same as a Mermaid flowchart.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeGraphMermaid(const CatalogueGraph& graph,
                                                       std::ostream& out);

}  // namespace tarn::evolution::catalogue
