#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/explanation/clash.hpp"
#include "catalogue/explanation/selection_lookup.hpp"
#include "pathfinder/hop.hpp"
#include "pathfinder/search_limits.hpp"
#include "pathfinder/version_repository.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A path exists: there is nothing to explain. Empty when the source is the target already.
struct PathExists {
  std::vector<pathfinder::BaselineHop> path;
};

/// A path exists, but `findPath` throws ConflictingDependencies, because hops lead to versions that
/// cannot be linked (see `Explanation::unlinkable`). This one keeps clear of them.
struct PathBesideUnlinkable {
  std::vector<pathfinder::BaselineHop> path;
};

/// One side of the question is no consistent selection: some of its versions cannot be linked, or
/// those that can cannot stand together, for which the clash is one reason of perhaps several. With
/// neither of both the selection is empty.
struct InconsistentSelection {
  QuestionSide side;
  std::vector<Unlinkable> unlinkable;
  std::optional<Clash> clash;

  /// For each selected party of the clash the nearest versions that would make the whole selection
  /// consistent, the others staying; none where there is no such version. Empty where some cannot
  /// be linked, or where the selections have too many linked variants to list them.
  std::vector<NamedVersions> remedies;
};

/// No sequence of hops brings one metamodel to its target version, whatever the others do.
struct MissingChain {
  NamedVersion target;

  /// The versions that the source holds, or else, when `isHeld` is false, that some version within
  /// reach links. Empty: nothing can bring the metamodel in.
  std::vector<pathfinder::VersionId> starts = {};
  bool isHeld = true;

  std::vector<pathfinder::VersionId> reached =
      {};  ///< from the starts, these among them; ascending
  std::vector<pathfinder::VersionId> leading = {};  ///< to the target, this among them; ascending

  /// Of `reached` and `leading` the two between which the gap is narrowest, going in the direction
  /// if that can be: a hop between them would close it. Empty when there are no starts.
  std::optional<pathfinder::Hop> missingHop = {};

  /// A chain from a start to the target if hops against the direction counted; else empty.
  std::vector<pathfinder::Hop> chainInAnyDirection = {};

  /// When nothing can bring the metamodel in: what would, if it were within reach.
  std::vector<NamedVersion> dependents = {};
};

struct MissingChains {
  pathfinder::VersionRepository::Direction direction;  ///< in which hops count
  std::vector<MissingChain> chains;                    ///< by ascending name
};

/// A path exists when hops in both directions count, but not in the question's direction, which is
/// the one that all metamodels of the question share that move at all.
struct AgainstDirection {
  pathfinder::VersionRepository::Direction direction;
  std::vector<pathfinder::BaselineHop> path;
  std::vector<pathfinder::Hop> against;  ///< the hops of `path` that go against the direction
};

/// A hop that cannot be taken from a baseline, whichever hops the others take or not.
struct BlockedHop {
  pathfinder::Hop hop;
  Clash clash;
};

/// Each metamodel has its chain of hops, but they never get there together.
///
/// `names` block one another, and none of them can be left out. A metamodel that is left out may
/// have any version, and another one at any time, as long as what is held fits together (see
/// `pathfinder::BlockedQuestion`).
///
/// Where the source does not hold all names of the target, what blocks has to be brought in, or
/// hops go round in circles, `isSmallest` is false, and leaving out means to ask for a model that
/// has no use for the metamodel: it is struck from the target, and from the source unless what
/// remains there links it, in which case it stays at the source's version. A baseline of the source
/// that does not hold each metamodel of `names` that has a target stays whole, for any part of it
/// may have to bring that one in.
struct NeverTogether {
  std::vector<std::u16string> names;  ///< ascending
  bool isMinimal;  ///< false when budget or limits ended before every name was tried to be left out
  bool isSmallest = false;  ///< whether it is proven that no smaller set does

  /// Where `names` and what they link get stuck: the baseline with the fewest hops left that all of
  /// them can reach (while each still has its chain), ascending; and the hops from there towards
  /// the target that a clash blocks.
  std::vector<NamedVersion> stuckAt = {};
  std::vector<BlockedHop> blocked = {};

  /// For each of `names` that no clash in `blocked` speaks of, one between versions within reach
  /// that it takes to prove that they block one another.
  std::vector<Clash> otherClashes = {};
};

/// A metamodel of the target that the nearest baseline does not hold at its target version.
struct Unfinished {
  NamedVersion target;
  std::optional<pathfinder::VersionId> held;  ///< none: it was not brought in
  std::optional<std::size_t> hopsLeft;        ///< none: no chain of hops leads on from there
};

/// Of all baselines that can be reached in the question's direction, the one with the most
/// metamodels at their target version; of these, one with the fewest hops left; of these, one with
/// a path of least weight.
///
/// Hops left are counted along each metamodel's own shortest chain in the direction, as if it could
/// move alone. One that has no chain, or is not held, counts as many as it has versions.
struct NearestBaseline {
  std::vector<pathfinder::BaselineHop> path;  ///< empty: the source itself
  pathfinder::VersionBaseline baseline;
  std::vector<NamedVersion> arrived = {};   ///< ascending
  std::vector<Unfinished> unfinished = {};  ///< ascending

  /// Whether there is none nearer. False when the budget or a limit ended the search: then this is
  /// the best one found.
  bool isProven = false;
};

/// What the catalogue tells, for people to read, of something that an explanation names.
struct ExplanationNote {
  /// The version itself, the hop that leads from it to another one, or its dependency on a name.
  NamedVersion subject;
  std::optional<pathfinder::VersionId> to = {};
  std::optional<std::u16string> dependency = {};
  std::u16string note = {};
};

/// Why there is no path, or that there is one. Linked metamodels in it are of the explanation's own
/// making, not those of the repository; `loadMetamodel` has not seen them.
struct Explanation {
  using Reason = std::variant<PathExists, UnknownEntries, InconsistentSelection, MissingChains,
                              AgainstDirection, NeverTogether, PathBesideUnlinkable>;
  Reason reason;

  /// The targets of hops within reach that cannot be linked. When not empty, `findPath` may throw
  /// ConflictingDependencies; the explanation disregards those hops.
  std::vector<Unlinkable> unlinkable;

  /// The versions without a precedence that the reason's hops against the direction leave or lead
  /// to. They count as older than all others; an equivalent could set the hop right.
  std::vector<NamedVersion> withoutOrder;

  /// None when there is a path, when there is no consistent source to start from or none can be
  /// told (see `hasTooManyVariants`), and when a limit was reached before the source was linked.
  std::optional<NearestBaseline> nearest;

  /// What the catalogue tells of the versions, hops and dependencies that are named here, in the
  /// order of their names.
  std::vector<ExplanationNote> notes = {};

  /// How many questions were put to the path finder.
  std::size_t questions = 0;

  /// The limit that was reached, if one was. That there is no path holds all the same; the parts
  /// that might have become better say that they are not proven.
  std::optional<pathfinder::SearchStopped::Reason> stopped = std::nullopt;

  /// Whether the selections have too many linked variants to list, and the question is of a kind
  /// that the path finder cannot be asked about without them. Then parts of it were not asked, the
  /// target was only looked at for what it is in contradiction with, and versions that links bring
  /// in count as if each could be held with any other.
  bool hasTooManyVariants = false;
};

/// How many questions an explanation puts to the path finder unless told otherwise.
inline constexpr std::size_t explanationBudget = 400;

/// Explains why `repository.findPath(question.from, question.to)` finds nothing or throws. Looks
/// all names and versions up first, also where `findPath` would not because both sides are equal.
///
/// Costs one question to the path finder, another one when the direction may be the reason or when
/// the selections have too many linked variants to list them, and then at most `budget` more, each
/// about a part of the same question: up to half of them find what blocks, the others the nearest
/// baseline. Where the path finder itself can tell both, seven suffice. Where the budget is not
/// enough, the parts concerned say so (`isMinimal`, `isProven`). Questions are not interrupted: a
/// catalogue on which the path finder needs long needs long here, too, unless there are limits.
///
/// Links what it needs in a repository of its own, and so leaves the linked metamodels and the path
/// cache of `repository` alone. What is explained stays valid without the repository. May be called
/// from any number of threads at once. Throws what the repository's look-ups throw.
TARN_EVOLUTION_CATALOGUE_EXPORT Explanation explain(BrowsableRepository& repository,
                                                    const Question& question,
                                                    std::size_t budget = explanationBudget);

/// The same within limits, which end it with the best that is known by then (see
/// `Explanation::stopped`). Throws SearchStopped when one is reached before it is known whether
/// there is a path.
///
/// What is left until the deadline is divided as the budget is: half of it, at most, is for what
/// blocks. The ceiling for memory holds for each question by itself, and `progress` is told of each
/// one's own search. Between questions limits are looked at, too.
TARN_EVOLUTION_CATALOGUE_EXPORT Explanation explain(BrowsableRepository& repository,
                                                    const Question& question, std::size_t budget,
                                                    const pathfinder::SearchLimits& limits);

}  // namespace tarn::evolution::catalogue
