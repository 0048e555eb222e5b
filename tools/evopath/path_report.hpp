#pragma once

#include <cstdint>
#include <iosfwd>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/explanation.hpp"
#include "pathfinder/version_repository.hpp"

namespace evopath {

/// One metamodel's part in a step, as text.
struct ReportedMove {
  std::string name;
  std::string from;  ///< empty when the metamodel was not held before: a link brought it in
  std::string to;
  bool expensive;
};

struct ReportedStep {
  std::vector<ReportedMove> moves;  ///< by ascending name, hops first, then what was brought in
  std::uint64_t weight;
};

/// What there is to say about the answer to a question.
struct PathReport {
  bool found = false;
  std::string whyNot;                  ///< one sentence, when not found
  std::string details;                 ///< lines that follow it
  nlohmann::ordered_json explanation;  ///< the same for programs
  std::vector<ReportedStep> steps;
  std::uint64_t weight = 0;
};

PathReport reportPath(const tarn::evolution::pathfinder::VersionRepository& repository,
                      const std::vector<tarn::evolution::pathfinder::BaselineHop>& path);

/// The explanation must be that of a question without a path that `findPath` can find.
PathReport reportNoPath(const tarn::evolution::pathfinder::VersionRepository& repository,
                        const tarn::evolution::catalogue::Explanation& explanation);

/// The steps for programs.
nlohmann::ordered_json stepsJson(const PathReport& report);

void printText(const PathReport& report, std::ostream& out);
void printJson(const PathReport& report, std::ostream& out);

}  // namespace evopath
