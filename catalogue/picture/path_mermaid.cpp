#include "catalogue/picture/path_mermaid.hpp"

#include <ostream>

#include "catalogue/picture/hop_label.hpp"
#include "catalogue/picture/markup.hpp"
#include "catalogue/picture/path_graph.hpp"
#include "catalogue/text/plain_numbers.hpp"

namespace tarn::evolution::catalogue {

namespace {

const char* classOf(PathGraph::NodeKind kind) {
  switch (kind) {
    case PathGraph::NodeKind::Unmoved:
      return ":::unmoved";
    case PathGraph::NodeKind::Entering:
      return ":::entering";
    case PathGraph::NodeKind::Ordinary:
      break;
  }
  return "";
}

void writeCluster(std::size_t column, const PathGraph::Cluster& cluster, std::ostream& out) {
  out << "  subgraph step" << column << "[" << quoteMermaid(cluster.label)
      << "]\n    direction TB\n";
  for (const auto& [id, label, kind, tooltip] : cluster.nodes) {
    out << "    " << id << "[" << quoteMermaid(label) << "]" << classOf(kind) << "\n";
  }
  out << "  end\n";
  if (cluster.order) {
    out << "  " << cluster.order->first << " ~~~ " << cluster.order->second << "\n";
  }
  for (const auto& [from, to, isExpensive, label] : cluster.edges) {
    out << "  " << from << (isExpensive ? " ==>" : " -->") << mermaidLabel(label) << " " << to
        << "\n";
  }
}

}  // namespace

void writePathMermaid(const PathPicture& picture, std::ostream& out) {
  const PlainNumbers plain(out);
  out << "flowchart LR\n";
  const PathGraph graph(picture);
  for (std::size_t column = 0; column < graph.clusters.size(); ++column) {
    writeCluster(column, graph.clusters[column], out);
  }
  out << "  classDef unmoved stroke-dasharray:2,color:#666\n"
         "  classDef entering stroke-dasharray:4\n";
}

}  // namespace tarn::evolution::catalogue
