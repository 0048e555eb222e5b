#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "pathfinder/search_limits.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// Paths under conditions on what lies between their ends.
namespace tarn::evolution::catalogue {

/// What a path must keep to. Versions are written as in questions.
struct PathConditions {
  /// Versions that no baseline of the path holds, the source included.
  std::map<std::u16string, std::vector<pathfinder::VersionId>> avoided = {};

  /// Metamodels that no step moves. One that the source lacks may be brought in.
  std::set<std::u16string> held = {};

  /// Versions that are not left once they are reached.
  std::map<std::u16string, pathfinder::VersionId> kept = {};

  /// Versions that some baseline of the path holds, in any order; the source must hold the
  /// metamodel.
  std::vector<std::pair<std::u16string, pathfinder::VersionId>> via = {};

  /// Otherwise that from the source to the first target.
  std::optional<pathfinder::VersionRepository::Direction> direction = {};

  bool areNone() const {
    return avoided.empty() && held.empty() && kept.empty() && via.empty() && !direction;
  }
};

/// A metamodel that the path is to bring to one of some versions.
struct PathGoal {
  std::u16string name;
  std::vector<pathfinder::VersionId> versions;

  /// Whether it is to be the first of them that can be reached, rather than any. Of several such
  /// goals, those that come before count more.
  bool isFirstWanted = false;
};

/// The versions of a metamodel that a text means: the one that is written so, or "latest", the
/// newest of the catalogue, or those in a range as of npm, such as ">=1.2 <2 || 3.x"; newest first.
/// Throws std::invalid_argument for a text that is none of these. None for an unknown metamodel, or
/// where nothing is in the range.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<pathfinder::VersionId> versionsMeant(
    BrowsableRepository& repository, const std::u16string& name, const std::string& text);

/// All versions of a metamodel that have a precedence, newest first.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<pathfinder::VersionId> newestFirst(
    BrowsableRepository& repository, const std::u16string& name);

/// The least-weight path from a selection to all goals that keeps to the conditions. Its baselines
/// are those of `repository`; where the selections have too many linked metamodels to be listed,
/// equal ones. Such questions are answered without listing them if nothing is to be passed and
/// each goal is one version. Absent: there is none, which is proven; versions that cannot be linked
/// take no part. A goal that is to be the first wanted is: for each version before there is no
/// path.
///
/// Throws std::invalid_argument, with a reason to show, for a `via` whose metamodel a source lacks,
/// and for goals with more than `mostTargets` combinations; what `VersionRepository::combine`
/// throws for the source; SearchStopped when a limit is reached.
TARN_EVOLUTION_CATALOGUE_EXPORT std::optional<std::vector<pathfinder::BaselineHop>>
findConditionalPath(BrowsableRepository& repository, const Selection& from,
                    const std::vector<PathGoal>& goals, const PathConditions& conditions,
                    const pathfinder::SearchLimits& limits = {});

/// The best paths, up to `count`: the least one, then again and again the least of those that, of
/// each path before, do without a version that its steps lead to. The first path settles what
/// first-wanted goals come to.
///
/// `limits.betterPath` is told each of these paths as soon as it is certain, so that a host has
/// those if a limit is reached. For each path looked at, takes a search for each version that it
/// reaches; their number can grow exponentially with `count`. Throws what `findConditionalPath`
/// throws.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<std::vector<pathfinder::BaselineHop>>
findAlternativePaths(BrowsableRepository& repository, const Selection& from,
                     const std::vector<PathGoal>& goals, const PathConditions& conditions,
                     std::size_t count, const pathfinder::SearchLimits& limits = {});

/// How many combinations of goals' versions are tried at most.
inline constexpr std::size_t mostTargets = 20'000;

}  // namespace tarn::evolution::catalogue
