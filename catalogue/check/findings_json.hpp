#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "catalogue/check/finding.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The findings of a check for programs, in the order of the file: {"catalogue", "errors",
/// "warnings", "notes", "findings": [{"code", "severity", "place", "message", "related":
/// [place]}]}. What is less severe than `least` is only counted. Bytes that are not UTF-8 become
/// U+FFFD.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeFindingsJson(const std::string& catalogue,
                                                       const std::vector<Finding>& findings,
                                                       Severity least, std::ostream& out);

}  // namespace tarn::evolution::catalogue
