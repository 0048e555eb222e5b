#include "import_report.hpp"

#include <algorithm>
#include <ostream>

#include "catalogue/text/display_text.hpp"
#include "catalogue/text/printed_text.hpp"
#include "store_report.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

constexpr std::size_t usuallyListed = 20;

bool isAny(const StoreCounts& counts) {
  return counts.metamodels > 0 || counts.hops > 0;
}

void printChanges(const CatalogueChanges& changes, const DryRunOption& dryRun, std::ostream& out) {
  if (!isAny(changes.added) && !isAny(changes.removed) && !isAny(changes.changed)) {
    out << (dryRun.isGiven ? "Nothing would have changed.\n" : "Nothing has changed.\n");
    return;
  }
  if (isAny(changes.added)) out << dryRun.tell("Added", describeCounts(changes.added));
  if (isAny(changes.removed)) out << dryRun.tell("Removed", describeCounts(changes.removed));
  if (isAny(changes.changed)) out << dryRun.tell("Changed", describeCounts(changes.changed));
}

}  // namespace

void printImportReport(const ImportReport& report, bool listsAll, const DryRunOption& dryRun,
                       std::ostream& out) {
  out << dryRun.tell("Imported", describeCounts(report.counts));
  if (report.isUpdate) printChanges(report.changes, dryRun, out);
  if (report.unordered > 0) {
    out << report.unordered << (report.unordered == 1 ? " version has" : " versions have")
        << " no place among the semantic versions; hops to them count as backward.\n";
  }
  const std::size_t count = report.leftOut.size();
  if (count == 0) return;
  out << "Left out:\n";
  const std::size_t listed = listsAll ? count : std::min(count, usuallyListed);
  for (std::size_t i = 0; i < listed; ++i) {
    out << "  " << toVisible(report.leftOut[i].what()) << "\n";
  }
  if (listed < count) out << "  and " << count - listed << " more; --list-all lists them\n";
}

}  // namespace evopath
