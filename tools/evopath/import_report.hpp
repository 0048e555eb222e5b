#pragma once

#include <iosfwd>

#include "catalogue/import/import.hpp"
#include "dry_run_option.hpp"

namespace evopath {

/// Writes what was imported and what that changed; of what was left out the first twenty, or all.
void printImportReport(const tarn::evolution::catalogue::ImportReport& report, bool listsAll,
                       const DryRunOption& dryRun, std::ostream& out);

}  // namespace evopath
