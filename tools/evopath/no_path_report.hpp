#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>

#include "catalogue/explanation/explanation.hpp"
#include "pathfinder/version_repository.hpp"

namespace evopath {

/// What there is to say when there is no path.
struct NoPathReport {
  std::string whyNot;                  ///< one sentence
  std::string details;                 ///< lines that follow it
  nlohmann::ordered_json explanation;  ///< the same for programs
};

/// The explanation must be that of a question without a path that `findPath` can find.
NoPathReport reportNoPath(const tarn::evolution::pathfinder::VersionRepository& repository,
                          const tarn::evolution::catalogue::Explanation& explanation);

void printText(const NoPathReport& report, std::ostream& out);
void printJson(const NoPathReport& report, std::ostream& out);

}  // namespace evopath
