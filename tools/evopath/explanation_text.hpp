#pragma once

#include <iosfwd>
#include <string>

#include "catalogue/explanation/explanation.hpp"

namespace evopath {

/// One sentence that says why there is no path; empty when there is one.
std::string headlineOf(const tarn::evolution::catalogue::Explanation& explanation);

/// The names and versions that are not known and those nearest to them, a sentence each in a line
/// of its own, without a line end after the last.
std::string describe(const tarn::evolution::catalogue::UnknownEntries& unknown);

/// All that there is to say beside the headline: the reason in detail, what cannot be linked, and
/// the nearest baseline, for which `weigh` weighs steps.
void printDetails(const tarn::evolution::catalogue::Explanation& explanation,
                  const tarn::evolution::pathfinder::VersionRepository& weigh, std::ostream& out);

}  // namespace evopath
