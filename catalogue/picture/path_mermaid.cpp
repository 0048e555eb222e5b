#include "catalogue/picture/path_mermaid.hpp"

#include <ostream>
#include <string>

#include "catalogue/picture/hop_label.hpp"
#include "catalogue/picture/markup.hpp"
#include "catalogue/picture/path_graph.hpp"
#include "catalogue/text/printed_text.hpp"

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

void writeChart(const PathGraph& graph, std::ostream& out) {
  out << "flowchart LR\n";
  for (std::size_t column = 0; column < graph.clusters.size(); ++column) {
    writeCluster(column, graph.clusters[column], out);
  }
  out << "  classDef unmoved stroke-dasharray:2,color:#666\n"
         "  classDef entering stroke-dasharray:4\n";
}

/// Mermaid draws no more than this unless its host sets `maxEdges` and `maxTextSize`, which a chart
/// itself may not.
void warnOfLimits(const PathGraph& graph, std::size_t size, std::ostream& out) {
  constexpr std::size_t mostEdges = 500;
  constexpr std::size_t mostText = 50'000;
  std::size_t edges = 0;
  for (const PathGraph::Cluster& cluster : graph.clusters) {
    edges += cluster.edges.size() + (cluster.order ? 1 : 0);
  }
  if (edges <= mostEdges && size <= mostText) return;
  const std::string text = std::to_string(edges) + " edges and " + std::to_string(size);
  out << "%% " << text << " characters: beyond " << std::to_string(mostEdges) << " and "
      << std::to_string(mostText)
      << ", Mermaid draws nothing unless maxEdges and maxTextSize are set.\n";
}

}  // namespace

void writePathMermaid(const PathPicture& picture, std::ostream& out) {
  const PathGraph graph(picture);
  const std::string chart = written([&](std::ostream& text) { writeChart(graph, text); });
  warnOfLimits(graph, chart.size(), out);
  out << chart;
}

}  // namespace tarn::evolution::catalogue
