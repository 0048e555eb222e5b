#include "catalogue/picture/path_dot.hpp"

#include <ostream>
#include <string>
#include <vector>

#include "catalogue/picture/markup.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// The node of a lane's version reached in a column.
std::string nodeId(std::size_t lane, std::size_t column) {
  return "m" + std::to_string(lane) + "s" + std::to_string(column);
}

void openCluster(std::size_t column, const std::string& label, std::ostream& out) {
  out << "  subgraph cluster_" << column << " {\n    label=" << quoteDot(label)
      << ";\n    style=\"rounded,filled\";\n    color=\"#9bb8cc\";\n    fillcolor=\"#eef4f9\";\n";
}

void writeNode(const std::string& id, const std::string& name, const std::string& version,
               const std::string& attributes, std::ostream& out) {
  out << "    " << id << " [label=" << quoteDot(name + " " + version) << attributes << "];\n";
}

void writeStart(const PathPicture& picture, std::ostream& out) {
  openCluster(0, "Start", out);
  for (std::size_t lane = 0; lane < picture.lanes.size(); ++lane) {
    const PathPicture::Lane& start = picture.lanes[lane];
    if (start.start.empty()) continue;
    writeNode(nodeId(lane, 0), start.name, start.start,
              start.isMoved ? "" : R"(, color="#999999", fontcolor="#595959")", out);
  }
  out << "  }\n";
}

void writeEdge(const std::string& from, const std::string& to, bool isExpensive,
               std::ostream& out) {
  out << "  " << from << " -> " << to;
  if (isExpensive) {
    out << R"( [color="#b34700:white:#b34700", fontcolor="#b34700", label="expensive"])";
  }
  out << ";\n";
}

/// Keeps a step to the right of the one before it also when they share no metamodel.
void writeOrder(const PathPicture& picture, std::size_t column, std::ostream& out) {
  if (column < 2) return;
  out << "  " << nodeId(picture.steps[column - 2].moves.front().lane, column - 1) << " -> "
      << nodeId(picture.steps[column - 1].moves.front().lane, column) << " [style=invis];\n";
}

}  // namespace

void writePathDot(const PathPicture& picture, std::ostream& out) {
  out << "digraph path {\n  rankdir=LR;\n  label=" << quoteDot(summarise(picture))
      << ";\n  fontname=\"sans-serif\";\n"
         "  node [shape=box, style=\"rounded,filled\", fillcolor=white, fontname=\"sans-serif\"];\n"
         "  edge [color=\"#0072b2\", fontname=\"sans-serif\"];\n";
  writeStart(picture, out);
  std::vector<std::size_t> columnOf(picture.lanes.size(), 0);
  for (std::size_t column = 1; column <= picture.steps.size(); ++column) {
    const PathPicture::Step& step = picture.steps[column - 1];
    openCluster(column,
                "Step " + std::to_string(column) + ", weight " + std::to_string(step.weight), out);
    for (const PathPicture::Move& move : step.moves) {
      const bool enters = move.kind == PathPicture::MoveKind::entering;
      writeNode(nodeId(move.lane, column), picture.lanes[move.lane].name,
                move.to + (enters ? " (brought in)" : ""),
                enters ? ", style=\"rounded,filled,dashed\"" : "", out);
    }
    out << "  }\n";
    writeOrder(picture, column, out);
    for (const PathPicture::Move& move : step.moves) {
      if (move.kind != PathPicture::MoveKind::entering) {
        writeEdge(nodeId(move.lane, columnOf[move.lane]), nodeId(move.lane, column),
                  move.kind == PathPicture::MoveKind::expensive, out);
      }
      columnOf[move.lane] = column;
    }
  }
  out << "}\n";
}

}  // namespace tarn::evolution::catalogue
