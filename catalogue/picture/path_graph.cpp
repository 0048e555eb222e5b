#include "catalogue/picture/path_graph.hpp"

#include "catalogue/picture/hop_label.hpp"

namespace tarn::evolution::catalogue {

namespace {

using MoveKind = PathPicture::MoveKind;
using NodeKind = PathGraph::NodeKind;

/// The node of a lane's version reached in a column.
std::string nodeId(std::size_t lane, std::size_t column) {
  return "m" + std::to_string(lane) + "s" + std::to_string(column);
}

std::string labelOf(std::string name, const std::string& version) {
  return name.append(" ").append(version);
}

PathGraph::Cluster startOf(const PathPicture& picture) {
  PathGraph::Cluster cluster{.label = "Start"};
  for (std::size_t i = 0; i < picture.lanes.size(); ++i) {
    const auto& [name, start, isMoved] = picture.lanes[i];
    if (start.empty()) continue;
    cluster.nodes.push_back(
        {nodeId(i, 0), labelOf(name, start), isMoved ? NodeKind::Ordinary : NodeKind::Unmoved, ""});
  }
  return cluster;
}

}  // namespace

PathGraph::PathGraph(const PathPicture& picture) {
  clusters.push_back(startOf(picture));
  std::vector<std::size_t> columnOf(picture.lanes.size(), 0);  // that each lane was reached in last
  for (std::size_t column = 1; column <= picture.steps.size(); ++column) {
    const PathPicture::Step& step = picture.steps[column - 1];
    Cluster& cluster = clusters.emplace_back();
    cluster.label = "Step " + std::to_string(column) + ", weight " + weightText(step.weight);
    if (column > 1) {
      cluster.order.emplace(clusters[column - 1].nodes.front().id,
                            nodeId(step.moves.front().lane, column));
    }
    for (const PathPicture::Move& move : step.moves) {
      const bool enters = move.kind == MoveKind::Entering;
      const std::string id = nodeId(move.lane, column);
      std::string label = labelOf(picture.lanes[move.lane].name, move.to);
      if (enters) {
        label += " (brought in" + (move.notes.empty() ? "" : ": " + shortNote(move.notes)) + ")";
      }
      cluster.nodes.push_back({id, label, enters ? NodeKind::Entering : NodeKind::Ordinary,
                               move.notes.empty() ? "" : describe(picture, move)});
      if (!enters) {
        const bool isExpensive = move.kind == MoveKind::Expensive;
        cluster.edges.push_back({nodeId(move.lane, columnOf[move.lane]), id, isExpensive,
                                 hopLabel(isExpensive, move.notes)});
      }
      columnOf[move.lane] = column;
    }
  }
}

}  // namespace tarn::evolution::catalogue
