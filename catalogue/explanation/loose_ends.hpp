#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/explanation/named_version.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// What a selection leaves open: metamodels that it does not name but needs, at versions that can
/// be chosen. Each consistent choice is a baseline of its own, and there may be more of them than
/// memory holds. Nothing here links anything.
namespace tarn::evolution::catalogue {

struct LooseEnds {
  /// How many baselines realise the selection, or the limit if there are more.
  std::uint64_t baselines = 0;

  /// Whether counting came to its end. False where there are more baselines than the limit, or
  /// where counting took too long: then there may be more.
  bool isCounted = true;

  /// What is open, with the versions that there is a choice of, ascending: those that the ranges
  /// admit, of which not every one may be consistent. The most choices first, then by name.
  std::vector<NamedVersions> names = {};
};

/// Counts up to `limit` baselines of a selection. Of a version that the repository does not know
/// there are none.
TARN_EVOLUTION_CATALOGUE_EXPORT LooseEnds findLooseEnds(BrowsableRepository& repository,
                                                        const Selection& selection,
                                                        std::uint64_t limit);

/// "more than 1000 baselines; pin some of these:", or "very many choices; ..." where none that is
/// consistent was met in time, and a line for each of the first ten names, with its number of
/// choices, the oldest and the newest; safe on a terminal, without a line end after the last.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string describe(const LooseEnds& ends);

enum class VersionPreference { Newest, Oldest };

/// The selection with all that it needs, at versions that are consistent: name by name, in the
/// ascending order of those that are needed at that time, the newest or oldest version with which
/// the rest can be completed. No value when there is no consistent choice, or the repository does
/// not know a selected version. Versions without a precedence count as older than all others.
/// Throws std::runtime_error when it takes too long.
TARN_EVOLUTION_CATALOGUE_EXPORT std::optional<Selection> completeSelection(
    BrowsableRepository& repository, const Selection& selection, VersionPreference preference);

}  // namespace tarn::evolution::catalogue
