#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "catalogue/check/finding.hpp"

namespace evopath {

/// What a check of a catalogue has to say.
struct CheckReport {
  std::string catalogue;
  std::vector<tarn::evolution::catalogue::Finding> findings;
  tarn::evolution::catalogue::Severity least;  ///< what is less is counted only
  bool listsAll = false;                       ///< rather than the first twenty of each code
};

/// Grouped by what was found, the gravest first, and ending with a line of numbers; safe on a
/// terminal.
void printText(const CheckReport& report, std::ostream& out);

/// In the order of the file.
void printJson(const CheckReport& report, std::ostream& out);

}  // namespace evopath
