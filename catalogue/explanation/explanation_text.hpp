#pragma once

#include <iosfwd>
#include <string>

#include "catalogue/explanation/explanation.hpp"
#include "catalogue/picture/path_picture.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// Explanations for people, in English and safe on a terminal (see `writePathText`).
namespace tarn::evolution::catalogue {

/// One sentence that says why there is no path; empty when there is one.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string headlineOf(const Explanation& explanation);

/// The names and versions that are not known and those nearest to them, a sentence each in a line
/// of its own, without a line end after the last.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string describe(const UnknownEntries& unknown);

/// "D 3.0.0 cannot be linked: ..." with the reason, in a line or more.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeUnlinkableText(const Unlinkable& unlinkable,
                                                         std::ostream& out);

/// "No path: ", the headline, and lines with all that there is to say beside it: the reason in
/// detail, what cannot be linked, and the nearest baseline. `weights` weighs the steps of paths.
/// Where there is a path, just says so.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeExplanationText(const Explanation& explanation,
                                                          const StepWeights& weights,
                                                          std::ostream& out);

}  // namespace tarn::evolution::catalogue
