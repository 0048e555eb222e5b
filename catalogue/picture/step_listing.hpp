#pragma once

#include <cstdint>
#include <iosfwd>
#include <stdexcept>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/picture/path_picture.hpp"
#include "catalogue/picture/step_text.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// In how many ways each metamodel of a baseline can take one of the hops that leave it in
/// `direction`, or none; the largest number there is when there are more. Time follows the number
/// of hops.
TARN_EVOLUTION_CATALOGUE_EXPORT std::uint64_t countHopCombinations(
    BrowsableRepository& repository, const pathfinder::VersionBaseline& baseline,
    pathfinder::VersionRepository::Direction direction);

/// There are more combinations of hops than may be tried. `what()` says how many.
class TARN_EVOLUTION_CATALOGUE_EXPORT TooManyCombinations : public std::runtime_error {
 public:
  TooManyCombinations(std::uint64_t combinations, std::uint64_t limit);
};

/// The steps that leave one baseline.
struct TARN_EVOLUTION_CATALOGUE_EXPORT StepListing {
  /// The steps of one direction, alternatives of each other: by ascending weight, then in the order
  /// in which they were found. Their weights are not summed up.
  struct Group {
    pathfinder::VersionRepository::Direction direction;
    PathPicture picture;
  };

  pathfinder::VersionBaseline baseline;
  std::vector<Group> groups;  ///< forward, backward, then both at once (Unknown); none is empty
};

/// The listing of some steps that leave a baseline, in any order.
TARN_EVOLUTION_CATALOGUE_EXPORT StepListing makeListing(BrowsableRepository& repository,
                                                        const pathfinder::VersionBaseline& baseline,
                                                        std::vector<pathfinder::BaselineHop> steps);

/// The steps that leave each baseline that realises a selection, in the order of `combine`; none
/// when the selection is not consistent.
///
/// Throws TooManyCombinations, before the first step is tried, when there are more than `limit`
/// combinations of hops, over all baselines; and what `combine` throws.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<StepListing> listSteps(
    BrowsableRepository& repository, const Selection& selection,
    pathfinder::VersionRepository::Direction direction, std::uint64_t limit);

/// The listings as lines of text. With several baselines, each is named by its number and what it
/// holds.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeStepsText(const std::vector<StepListing>& listings,
                                                    Colouring colouring, std::ostream& out);

/// The listings for programs: {"baselines": [{"metamodels": {name: version}, "steps":
/// [{"direction", "weight", "hops", "broughtIn"}]}]}; the parts of a step as a path has them.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeStepsJson(const std::vector<StepListing>& listings,
                                                    std::ostream& out);

}  // namespace tarn::evolution::catalogue
