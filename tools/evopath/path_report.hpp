#pragma once

#include <iosfwd>
#include <string>

namespace evopath {

/// What there is to say when there is no path.
struct PathReport {
  std::string whyNot;  ///< one sentence
};

PathReport reportNoPath(const std::string& whyNot);

void printText(const PathReport& report, std::ostream& out);
void printJson(const PathReport& report, std::ostream& out);

}  // namespace evopath
