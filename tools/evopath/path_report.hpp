#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

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
  std::string whyNot;  ///< one sentence, when not found
  std::vector<ReportedStep> steps;
  std::uint64_t weight = 0;
};

PathReport reportPath(const tarn::evolution::pathfinder::VersionRepository& repository,
                      const std::vector<tarn::evolution::pathfinder::BaselineHop>& path);
PathReport reportNoPath(const std::string& whyNot);

void printText(const PathReport& report, std::ostream& out);
void printJson(const PathReport& report, std::ostream& out);

}  // namespace evopath
