#include "path_report.hpp"

#include <algorithm>
#include <iomanip>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

#include "explanation_json.hpp"
#include "explanation_text.hpp"
#include "phrases.hpp"

namespace evopath {

using tarn::evolution::pathfinder::BaselineHop;
using tarn::evolution::pathfinder::Hop;
using tarn::evolution::pathfinder::LinkedMetamodel;

namespace {

std::vector<ReportedMove> reportMoves(const BaselineHop& step) {
  std::vector<ReportedMove> moves;
  for (const auto& [name, hop] :
       std::map<std::u16string, Hop>(step.hops.begin(), step.hops.end())) {
    moves.push_back({textOf(name), textOf(hop.from), textOf(hop.to), hop.expensive});
  }
  std::map<std::u16string, const LinkedMetamodel*> broughtIn;
  for (const auto& [name, linked] : step.to.metamodels) {
    if (!step.from.metamodels.contains(name)) broughtIn.emplace(name, linked.get());
  }
  for (const auto& [name, linked] : broughtIn) {
    moves.push_back({textOf(name), "", textOf(linked->version), false});
  }
  return moves;
}

/// The longest text that `part` gives among all moves of the path.
template <class Part>
int widestOf(const PathReport& report, const Part& part) {
  std::size_t widest = 0;
  for (const ReportedStep& step : report.steps) {
    for (const ReportedMove& move : step.moves) widest = std::max(widest, part(move).size());
  }
  return static_cast<int>(widest);
}

}  // namespace

PathReport reportPath(const tarn::evolution::pathfinder::VersionRepository& repository,
                      const std::vector<BaselineHop>& path) {
  PathReport report;
  report.found = true;
  for (const BaselineHop& step : path) {
    report.steps.push_back({reportMoves(step), repository.getWeight(step.hops)});
    report.weight += report.steps.back().weight;
  }
  return report;
}

PathReport reportNoPath(const tarn::evolution::pathfinder::VersionRepository& repository,
                        const tarn::evolution::catalogue::Explanation& explanation) {
  PathReport report;
  report.whyNot = headlineOf(explanation);
  std::ostringstream details;
  printDetails(explanation, repository, details);
  report.details = details.str();
  report.explanation = toJson(explanation, repository);
  return report;
}

void printText(const PathReport& report, std::ostream& out) {
  if (!report.found) {
    out << "No path: " << report.whyNot << "\n" << report.details;
    return;
  }
  if (report.steps.empty()) {
    out << "Nothing to do: the source holds every version asked for.\n";
    return;
  }
  const int nameWidth = widestOf(report, [](const ReportedMove& move) { return move.name; });
  const int fromWidth = widestOf(report, [](const ReportedMove& move) { return move.from; });
  out << std::left;
  for (std::size_t i = 0; i < report.steps.size(); ++i) {
    out << "Step " << i + 1 << ", weight " << report.steps[i].weight << "\n";
    for (const ReportedMove& move : report.steps[i].moves) {
      out << "  " << std::setw(nameWidth) << move.name << "  " << std::setw(fromWidth) << move.from
          << (move.from.empty() ? "  + " : " -> ") << move.to
          << (move.expensive ? "  expensive" : "") << "\n";
    }
  }
  out << counted(report.steps.size(), "step") << ", weight " << report.weight << "\n";
}

nlohmann::ordered_json stepsJson(const PathReport& report) {
  using nlohmann::ordered_json;
  ordered_json steps = ordered_json::array();
  for (const ReportedStep& step : report.steps) {
    ordered_json hops = ordered_json::array();
    ordered_json broughtIn = ordered_json::array();
    for (const auto& [name, from, to, expensive] : step.moves) {
      if (from.empty()) {
        broughtIn.push_back({{"name", name}, {"version", to}});
      } else {
        hops.push_back({{"name", name}, {"from", from}, {"to", to}, {"expensive", expensive}});
      }
    }
    steps.push_back({{"weight", step.weight}, {"hops", hops}, {"broughtIn", broughtIn}});
  }
  return steps;
}

void printJson(const PathReport& report, std::ostream& out) {
  nlohmann::ordered_json document{{"found", report.found}};
  if (!report.found) {
    document["reason"] = report.whyNot;
    document["explanation"] = report.explanation;
  } else {
    document["weight"] = report.weight;
    document["steps"] = stepsJson(report);
  }
  out << document.dump(2) << "\n";
}

}  // namespace evopath
