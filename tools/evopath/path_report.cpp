#include "path_report.hpp"

#include <nlohmann/json.hpp>
#include <ostream>

namespace evopath {

PathReport reportNoPath(const std::string& whyNot) {
  PathReport report;
  report.whyNot = whyNot;
  return report;
}

void printText(const PathReport& report, std::ostream& out) {
  out << "No path: " << report.whyNot << "\n";
}

void printJson(const PathReport& report, std::ostream& out) {
  using nlohmann::ordered_json;
  ordered_json document{{"found", false}};
  document["reason"] = report.whyNot;
  out << document.dump(2) << "\n";
}

}  // namespace evopath
