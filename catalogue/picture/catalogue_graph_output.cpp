#include <ostream>
#include <string>

#include "catalogue/picture/catalogue_graph.hpp"
#include "catalogue/picture/hop_label.hpp"
#include "catalogue/picture/markup.hpp"
#include "catalogue/text/note_lines.hpp"
#include "catalogue/text/plain_numbers.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::string idOf(const CatalogueGraph::End& end) {
  return "m" + std::to_string(end.group) + "v" + std::to_string(end.node);
}

/// What is told, if anything is.
std::string labelOf(bool isExpensive, const std::string& note) {
  return hopLabel(isExpensive,
                  note.empty() ? std::vector<std::string>() : std::vector<std::string>{note});
}

std::string attributesOf(bool isExpensive, const std::string& note) {
  if (!isExpensive && note.empty()) return "";
  std::string text = " [";
  if (isExpensive) text += R"(color="#b34700:white:#b34700", fontcolor="#b34700", )";
  text += "label=" + quoteDot(labelOf(isExpensive, note));
  if (!note.empty()) text += ", tooltip=" + quoteDot(inOneLine(note));
  return text + "]";
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
          << (nodes[node].isRange ? ", shape=note, style=\"dashed\", fontsize=11" : "");
      if (!nodes[node].note.empty()) out << ", tooltip=" << quoteDot(inOneLine(nodes[node].note));
      out << "];\n";
    }
    out << "  }\n";
  }
  for (const auto& [from, to, isExpensive, note] : graph.hops) {
    out << "  " << idOf(from) << " -> " << idOf(to) << attributesOf(isExpensive, note) << ";\n";
  }
  for (const auto& [from, to, note] : graph.dependencies) {
    out << "  " << idOf(from) << " -> " << idOf(to)
        << " [style=dashed, color=\"#555555\", arrowhead=open";
    if (!note.empty()) {
      out << ", fontcolor=\"#555555\", label=" << quoteDot(labelOf(false, note))
          << ", tooltip=" << quoteDot(inOneLine(note));
    }
    out << "];\n";
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
  for (const auto& [from, to, isExpensive, note] : graph.hops) {
    out << "  " << idOf(from) << (isExpensive ? " ==>" : " -->")
        << mermaidLabel(labelOf(isExpensive, note)) << " " << idOf(to) << "\n";
  }
  for (const auto& [from, to, note] : graph.dependencies) {
    out << "  " << idOf(from) << " -.->" << mermaidLabel(labelOf(false, note)) << " " << idOf(to)
        << "\n";
  }
}

}  // namespace tarn::evolution::catalogue
