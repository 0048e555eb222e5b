#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "catalogue/explanation/hop_graph.hpp"
#include "catalogue/explanation/inquiry.hpp"

namespace tarn::evolution::catalogue {

/// A question whose versions are known and whose source is consistent, as far as that can be told
/// within bounds, or a part of one.
struct PosedQuestion {
  Inquiry* inquiry;
  HopGraphs* graphs;
  Direction direction;

  /// Not empty, unless nothing may be linked and the path finder knows no source.
  std::vector<pathfinder::VersionBaseline> sources = {};

  SelectedMetamodels goals = {};

  /// Whether linking is bounded. Otherwise no more is linked than the path finder does, and parts
  /// of the question are asked of `blocked`, or from `selected`.
  bool mayLink = true;
  const Selection* selected = nullptr;  ///< what is selected of the sources

  /// The same as a question that can be asked why it has no path; null when it is of another kind.
  pathfinder::BlockedQuestion* blocked = nullptr;
  bool canAskForNearest() const { return blocked != nullptr && blocked->isClosed(); }

  /// The versions from which hops may bring each goal to its target: those that the sources hold,
  /// or else those that a version within reach may bring in (see `findStarts`).
  std::map<std::u16string, std::vector<pathfinder::VersionId>> starts = {};

  /// The goals that not every source holds.
  std::set<std::u16string> newcomers = {};

  /// The way to a baseline that holds some of the goals. Asks one question, or none when the goals
  /// cannot stand together.
  Answer reach(const SelectedMetamodels& someGoals) const {
    if (someGoals.empty()) return {.path = Path()};
    const std::vector<pathfinder::VersionBaseline> targets = inquiry->combine(someGoals);
    if (targets.empty()) return {};
    return inquiry->ask(sources, targets, direction);
  }
};

/// Fills in `starts` and `newcomers`. For newcomers follows hops and dependencies from all that the
/// sources hold, each metamodel as if it could move alone: what that does not bring in, nothing
/// does.
void findStarts(PosedQuestion& question);

/// The same for a question whose sources are not known but for what is selected of them: what that
/// depends on may be brought in as well.
void findStartsOf(const SelectedMetamodels& selection, PosedQuestion& question);

/// Whether a version has requirements that the sources hold, or that hops and dependencies lead to
/// from these, each metamodel as if it could move alone.
bool mayMeetRequirements(const PosedQuestion& question);

}  // namespace tarn::evolution::catalogue
