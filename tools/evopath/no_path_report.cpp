#include "no_path_report.hpp"

#include <ostream>
#include <sstream>

#include "explanation_json.hpp"
#include "explanation_text.hpp"

namespace evopath {

NoPathReport reportNoPath(const tarn::evolution::pathfinder::VersionRepository& repository,
                          const tarn::evolution::catalogue::Explanation& explanation) {
  std::ostringstream details;
  printDetails(explanation, repository, details);
  return {headlineOf(explanation), details.str(), toJson(explanation, repository)};
}

void printText(const NoPathReport& report, std::ostream& out) {
  out << "No path: " << report.whyNot << "\n" << report.details;
}

void printJson(const NoPathReport& report, std::ostream& out) {
  const nlohmann::ordered_json document{
      {"found", false}, {"reason", report.whyNot}, {"explanation", report.explanation}};
  out << document.dump(2) << "\n";
}

}  // namespace evopath
