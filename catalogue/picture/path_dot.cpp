#include "catalogue/picture/path_dot.hpp"

#include <ostream>

#include "catalogue/picture/markup.hpp"
#include "catalogue/picture/path_graph.hpp"
#include "catalogue/text/plain_numbers.hpp"

namespace tarn::evolution::catalogue {

namespace {

const char* attributesOf(PathGraph::NodeKind kind) {
  switch (kind) {
    case PathGraph::NodeKind::Unmoved:
      return R"(, color="#999999", fontcolor="#595959")";
    case PathGraph::NodeKind::Entering:
      return ", style=\"rounded,filled,dashed\"";
    case PathGraph::NodeKind::Ordinary:
      break;
  }
  return "";
}

void writeCluster(std::size_t column, const PathGraph::Cluster& cluster, std::ostream& out) {
  out << "  subgraph cluster_" << column << " {\n    label=" << quoteDot(cluster.label)
      << ";\n    style=\"rounded,filled\";\n    color=\"#9bb8cc\";\n    fillcolor=\"#eef4f9\";\n";
  for (const auto& [id, label, kind, tooltip] : cluster.nodes) {
    out << "    " << id << " [label=" << quoteDot(label) << attributesOf(kind);
    if (!tooltip.empty()) out << ", tooltip=" << quoteDot(tooltip);
    out << "];\n";
  }
  out << "  }\n";
  if (cluster.order) {
    out << "  " << cluster.order->first << " -> " << cluster.order->second << " [style=invis];\n";
  }
  for (const auto& [from, to, isExpensive, label] : cluster.edges) {
    out << "  " << from << " -> " << to;
    if (isExpensive) {
      out << R"( [color="#b34700:white:#b34700", fontcolor="#b34700", label=)" << quoteDot(label)
          << "]";
    } else if (!label.empty()) {
      out << " [label=" << quoteDot(label) << "]";
    }
    out << ";\n";
  }
}

}  // namespace

void writePathDot(const PathPicture& picture, std::ostream& out) {
  const PlainNumbers plain(out);
  out << "digraph path {\n  rankdir=LR;\n  label=" << quoteDot(summarise(picture))
      << ";\n  fontname=\"sans-serif\";\n"
         "  node [shape=box, style=\"rounded,filled\", fillcolor=white, fontname=\"sans-serif\"];\n"
         "  edge [color=\"#0072b2\", fontname=\"sans-serif\"];\n";
  const PathGraph graph(picture);
  for (std::size_t column = 0; column < graph.clusters.size(); ++column) {
    writeCluster(column, graph.clusters[column], out);
  }
  out << "}\n";
}

}  // namespace tarn::evolution::catalogue
