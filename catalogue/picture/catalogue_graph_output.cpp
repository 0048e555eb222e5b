#include <ostream>
#include <string>

#include "catalogue/picture/catalogue_graph.hpp"
#include "catalogue/picture/markup.hpp"
#include "catalogue/text/plain_numbers.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::string idOf(const CatalogueGraph::End& end) {
  return "m" + std::to_string(end.group) + "v" + std::to_string(end.node);
}

}  // namespace

void writeGraphDot(const CatalogueGraph& graph, std::ostream& out) {
  const PlainNumbers plain(out);
  out << "digraph catalogue {\n  rankdir=LR;\n  fontname=\"sans-serif\";\n"
         "  node [shape=box, style=\"rounded,filled\", fillcolor=white, fontname=\"sans-serif\"];\n"
         "  edge [color=\"#0072b2\", fontname=\"sans-serif\"];\n";
  for (std::size_t group = 0; group < graph.groups.size(); ++group) {
    out << "  subgraph cluster_" << group << " {\n    label=" << quoteDot(graph.groups[group].name)
        << ";\n    style=\"rounded,filled\";\n    color=\"#9bb8cc\";\n"
           "    fillcolor=\"#eef4f9\";\n";
    const auto& nodes = graph.groups[group].nodes;
    for (std::size_t node = 0; node < nodes.size(); ++node) {
      out << "    " << idOf({group, node}) << " [label=" << quoteDot(nodes[node].label)
          << (nodes[node].isRange ? ", shape=note, style=\"dashed\", fontsize=11" : "") << "];\n";
    }
    out << "  }\n";
  }
  for (const auto& [from, to, isExpensive] : graph.hops) {
    out << "  " << idOf(from) << " -> " << idOf(to);
    if (isExpensive) {
      out << R"( [color="#b34700:white:#b34700", fontcolor="#b34700", label="expensive"])";
    }
    out << ";\n";
  }
  for (const auto& [from, to] : graph.dependencies) {
    out << "  " << idOf(from) << " -> " << idOf(to)
        << " [style=dashed, color=\"#555555\", arrowhead=open];\n";
  }
  out << "}\n";
}

void writeGraphMermaid(const CatalogueGraph& graph, std::ostream& out) {
  const PlainNumbers plain(out);
  out << "flowchart LR\n";
  for (std::size_t group = 0; group < graph.groups.size(); ++group) {
    out << "  subgraph m" << group << "[" << quoteMermaid(graph.groups[group].name) << "]\n";
    const auto& nodes = graph.groups[group].nodes;
    for (std::size_t node = 0; node < nodes.size(); ++node) {
      const bool isRange = nodes[node].isRange;
      out << "    " << idOf({group, node}) << (isRange ? "([" : "[")
          << quoteMermaid(nodes[node].label) << (isRange ? "])" : "]") << "\n";
    }
    out << "  end\n";
  }
  for (const auto& [from, to, isExpensive] : graph.hops) {
    out << "  " << idOf(from) << (isExpensive ? " ==>|expensive| " : " --> ") << idOf(to) << "\n";
  }
  for (const auto& [from, to] : graph.dependencies) {
    out << "  " << idOf(from) << " -.-> " << idOf(to) << "\n";
  }
}

}  // namespace tarn::evolution::catalogue
