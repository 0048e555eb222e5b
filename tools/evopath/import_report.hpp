#pragma once

#include <iosfwd>

#include "catalogue/import/import.hpp"

namespace evopath {

/// Writes what was imported and what that changed; of what was left out the first twenty, or all.
void printImportReport(const tarn::evolution::catalogue::ImportReport& report, bool listsAll,
                       std::ostream& out);

}  // namespace evopath
