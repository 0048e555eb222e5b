#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/picture/path_picture.hpp"

namespace tarn::evolution::catalogue {

/// A path for languages that lay graphs out: a cluster for the start and for each step, a node for
/// each version reached in it. All texts are UTF-8 as the catalogue has them. Metamodels that never
/// move stand at the start only.
struct PathGraph {
  enum class NodeKind {
    Ordinary,
    Unmoved,   ///< of a metamodel that never moves
    Entering,  ///< brought in by a link; no edge leads there
  };

  struct Node {
    std::string id;
    std::string label;
    NodeKind kind;
    std::string tooltip;  ///< the move that leads there, if it has notes
  };

  /// A move, from the node that the metamodel was at.
  struct Edge {
    std::string from;
    std::string to;
    bool isExpensive;
    std::string label;  ///< "expensive", or the beginning of the move's notes, or both, or nothing
  };

  struct Cluster {
    std::string label;
    std::vector<Node> nodes = {};
    std::vector<Edge> edges = {};  ///< that lead here

    /// A node of the step before and one of this step, to keep the steps in order also when they
    /// share no metamodel.
    std::optional<std::pair<std::string, std::string>> order = {};
  };

  explicit PathGraph(const PathPicture& picture);

  std::vector<Cluster> clusters;  ///< the start, then the steps
};

}  // namespace tarn::evolution::catalogue
