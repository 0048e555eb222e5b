#include "catalogue/picture/path_mermaid.hpp"

#include <ostream>
#include <string>
#include <vector>

#include "catalogue/picture/markup.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::string nodeId(std::size_t lane, std::size_t column) {
  return "m" + std::to_string(lane) + "s" + std::to_string(column);
}

void openSubgraph(std::size_t column, const std::string& label, std::ostream& out) {
  out << "  subgraph step" << column << "[" << quoteMermaid(label) << "]\n    direction TB\n";
}

void writeNode(const std::string& id, const std::string& label, const char* style,
               std::ostream& out) {
  out << "    " << id << "[" << quoteMermaid(label) << "]" << style << "\n";
}

void writeStart(const PathPicture& picture, std::ostream& out) {
  openSubgraph(0, "Start", out);
  for (std::size_t lane = 0; lane < picture.lanes.size(); ++lane) {
    const PathPicture::Lane& start = picture.lanes[lane];
    if (start.start.empty()) continue;
    writeNode(nodeId(lane, 0), start.name + " " + start.start, start.isMoved ? "" : ":::unmoved",
              out);
  }
  out << "  end\n";
}

/// Keeps a step to the right of the one before it also when they share no metamodel.
void writeOrder(const PathPicture& picture, std::size_t column, std::ostream& out) {
  if (column < 2) return;
  out << "  " << nodeId(picture.steps[column - 2].moves.front().lane, column - 1) << " ~~~ "
      << nodeId(picture.steps[column - 1].moves.front().lane, column) << "\n";
}

}  // namespace

void writePathMermaid(const PathPicture& picture, std::ostream& out) {
  out << "flowchart LR\n";
  writeStart(picture, out);
  std::vector<std::size_t> columnOf(picture.lanes.size(), 0);
  for (std::size_t column = 1; column <= picture.steps.size(); ++column) {
    const PathPicture::Step& step = picture.steps[column - 1];
    openSubgraph(column,
                 "Step " + std::to_string(column) + ", weight " + std::to_string(step.weight), out);
    for (const PathPicture::Move& move : step.moves) {
      const bool enters = move.kind == PathPicture::MoveKind::entering;
      writeNode(nodeId(move.lane, column),
                picture.lanes[move.lane].name + " " + move.to + (enters ? " (brought in)" : ""),
                enters ? ":::entering" : "", out);
    }
    out << "  end\n";
    writeOrder(picture, column, out);
    for (const PathPicture::Move& move : step.moves) {
      if (move.kind != PathPicture::MoveKind::entering) {
        const bool isExpensive = move.kind == PathPicture::MoveKind::expensive;
        out << "  " << nodeId(move.lane, columnOf[move.lane])
            << (isExpensive ? " ==>|expensive| " : " --> ") << nodeId(move.lane, column) << "\n";
      }
      columnOf[move.lane] = column;
    }
  }
  out << "  classDef unmoved stroke-dasharray:2,color:#666\n"
         "  classDef entering stroke-dasharray:4\n";
}

}  // namespace tarn::evolution::catalogue
