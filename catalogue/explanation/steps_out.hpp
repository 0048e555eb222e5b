#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/explanation/clash.hpp"
#include "catalogue/picture/step_listing.hpp"
#include "pathfinder/hop.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// The steps that leave a baseline, without the hops that lead to versions that cannot be linked,
/// over which `VersionRepository::getStepsFrom` stumbles, and those that lead to where they start.
namespace tarn::evolution::catalogue {

/// Which hops count, and how many combinations of them may be tried.
struct StepSearch {
  pathfinder::VersionRepository::Direction direction = pathfinder::VersionRepository::Unknown;
  std::uint64_t limit = 1'000'000;
};

/// What has been found of the steps.
struct StepsOut {
  /// For each baseline of the selection, in the order of `combine`.
  std::vector<StepListing> listings;

  /// The targets of hops that were left out.
  std::vector<Unlinkable> unlinkable;

  /// Whether these are all. False when the limit was reached.
  bool isComplete = true;
};

/// The minimal steps out of each baseline that realises a selection: those of which no part, that
/// is no smaller choice of the same hops, is a step. Every other step has one of them in it.
///
/// Begins with single hops and adds to one that is no step only hops of what stands in its way; so
/// the number of combinations tried follows what depends on one another, not all that can move.
/// Throws what `combine` throws.
TARN_EVOLUTION_CATALOGUE_EXPORT StepsOut findMinimalSteps(BrowsableRepository& repository,
                                                          const Selection& selection,
                                                          const StepSearch& search);

enum class StepForm {
  Text,
  JsonLines,  ///< {"baseline": {name: version}, "direction", "weight", "hops", "broughtIn"} each
};

/// Every step out of each baseline that realises a selection, in the order of `getStepsFrom`,
/// written as soon as it is found; memory is that of one step. `write` is given the texts. The
/// result's listings are without steps, and the limit holds for each baseline by itself. Throws
/// what `combine` and `write` throw.
TARN_EVOLUTION_CATALOGUE_EXPORT StepsOut streamSteps(
    BrowsableRepository& repository, const Selection& selection, const StepSearch& search,
    StepForm form, Colouring colouring, const std::function<void(const std::string& text)>& write);

/// The listings as `writeStepsText` writes them, and what was left out.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeStepsOutText(const StepsOut& steps, Colouring colouring,
                                                       std::ostream& out);

/// {"baselines", "unlinkable": [{"name", "version"}], "complete"}; the first as `writeStepsJson`
/// has it.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeStepsOutJson(const StepsOut& steps, std::ostream& out);

}  // namespace tarn::evolution::catalogue
