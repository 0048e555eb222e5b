#pragma once

#include <iosfwd>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/picture/path_picture.hpp"
#include "catalogue/picture/step_ties.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A path with all that a program needs to carry it out and to say why it is so. A value,
/// independent of the repository.
struct PathPlan {
  Question question;
  pathfinder::VersionBaseline start;  ///< before the first step
  pathfinder::VersionBaseline end;    ///< after the last one
  std::vector<pathfinder::BaselineHop> steps;
  std::vector<std::vector<StepTie>> ties;  ///< for each step
  PathPicture picture;                     ///< with ties and notes
};

/// The plan of a path that `repository.findPath(question.from, question.to)` has found. One without
/// steps starts where the source includes the target; to find that baseline, both are combined. It
/// is empty where they cannot be, or where that takes too much (see `tryCombine`). `content` tells
/// the notes; it may be the same.
TARN_EVOLUTION_CATALOGUE_EXPORT PathPlan makePlan(pathfinder::VersionRepository& repository,
                                                  BrowsableRepository& content,
                                                  const Question& question,
                                                  const std::vector<pathfinder::BaselineHop>& path);

/// Which version of the form below is written.
inline constexpr std::uint64_t planForm = 1;

/// The plan as JSON, whose schema is data/plan.schema.json:
///
///     {"form": 1, "found": true, "question": {"from": MEMBERS, "to": MEMBERS}, "weight",
///      "start": MEMBERS, "end": MEMBERS,
///      "steps": [{"weight", "hops": [{"name", "from", "to", "expensive", "notes": [text]}],
///                 "broughtIn": [{"name", "version", "notes": [text]}],
///                 "ties": [{"mover", "companion", "dependent": {"name", "version"},
///                           "needs": {"name", "range"}, "refused"}],
///                 "bundles": [[name]]}]}
///
/// "leastProven" follows the weight of a path that is not proven (see `PathPicture`). MEMBERS are
/// {name: version}. For ties see `StepTie`, for bundles `bundlesOf`; a range is as in a
/// catalogue, and "refused" null where the companion enters; "notes" is left out where there are
/// none. Fields may come to be added without a new form.
TARN_EVOLUTION_CATALOGUE_EXPORT void writePlanJson(const PathPlan& plan, std::ostream& out);

}  // namespace tarn::evolution::catalogue
