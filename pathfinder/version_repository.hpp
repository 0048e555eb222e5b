#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "pathfinder/hop.hpp"
#include "pathfinder/linked_metamodel.hpp"
#include "pathfinder/metamodel.hpp"
#include "pathfinder/requirement.hpp"
#include "pathfinder/search_limits.hpp"
#include "pathfinder/version_baseline.hpp"
#include "pathfinder/version_id.hpp"
#include "tarn_evolution_pathfinder_export.hpp"

namespace tarn::evolution::pathfinder {

struct ResolvedRequirement;

/// A catalogue of metamodels and hops, and the path finder over it.
///
/// An application derives from this class, answers `findMetamodels` and `findHops` (and, where it
/// needs to, the three hooks), and asks: `findPath` for the way from one selection of versions to
/// another, or one of the operations that it is made of.
///
/// **What it keeps.** Linked metamodels, one list for each descriptor, are made on first demand and
/// kept for the repository's lifetime. Paths found are kept until a new metamodel is linked or
/// `invalidatePathfindingCache` is called. Dependencies must be free of cycles; linking one throws
/// std::logic_error, which names its metamodels. What metamodels need of each other without such an
/// order is a `PeerRequirement`: it is not linked, but no step leads to a baseline that violates
/// one.
///
/// **What may change.** Asked the same twice, the application must say the same, in the same order,
/// for the repository's lifetime: a metamodel that has been linked is not linked again. Hops alone
/// may change, for they are asked for afresh in every search. A search that runs meanwhile may
/// answer by former and new ones mixed; when it has ended, `invalidatePathfindingCache` is to be
/// called. Where versions, dependencies or equivalents change, it takes a new repository.
///
/// **Equal questions, equal answers.** Wherever an order decides (which of several paths of equal
/// weight is returned, the list of steps, the list of baselines), it is a function of the
/// content asked about: ascending UTF-16 order of names, then the application's order of versions
/// and hops. The linked metamodels of one descriptor stand in an order fixed by its list of
/// dependencies.
///
/// **Threads.** Everything runs on the caller's thread. Any number of threads may call any
/// operations of one repository at once, also from within the application's own operations, which
/// must then bear being called at once themselves. No lock is held while one of these runs. All
/// callers get one and the same list of linked metamodels for a descriptor, for ever: when two
/// threads link it at once, one of the two lists is dropped, after both were passed to
/// `loadMetamodel`. Looking up what is linked takes no lock. Trace records about the path cache are
/// written while it is locked: who receives them must neither ask the same repository there nor
/// wait for another thread that does, as a synchronous call to a user interface's thread may. To do
/// so may throw std::system_error or never end.
///
/// **Lifetime.** The repository must outlive every operation on it, and every reference that
/// `getLinkedMetamodels` returns. Baselines, hops and paths are values, and share their linked
/// metamodels: they outlive the repository.
///
/// **Exceptions.** What the application's operations throw reaches the caller unchanged, but a
/// search drops it where its answer does not depend on it (see `findPath`). After any exception the
/// repository answers correctly: what was linked completely stays, nothing half-made does, and no
/// path of a search that failed is kept. A path that was found is kept when the record about its
/// being stored is what throws. Besides what is said at each operation, std::bad_alloc may leave
/// any of them, and std::system_error, when the path cache cannot be locked, any that asks it,
/// stores in it or empties it, as linking does.
class TARN_EVOLUTION_PATHFINDER_EXPORT VersionRepository {
 public:
  /// Which way a move between versions goes. As the direction asked for, `Forward` excludes hops
  /// that go backward and `Backward` those that go forward; the others exclude nothing.
  enum Direction : std::int32_t { Equal = 0, Forward = 1, Backward = 2, Unknown = 3 };

  /// Hash of a baseline that does not depend on the order in which its map was filled: names and
  /// versions by exclusive or. Baselines that differ only in which variant of a metamodel they hold
  /// collide.
  struct TARN_EVOLUTION_PATHFINDER_EXPORT KeyHasherVersionBaselineUnordered {
    std::size_t operator()(const VersionBaseline& baseline) const noexcept;
  };

  VersionRepository();
  virtual ~VersionRepository();
  VersionRepository(const VersionRepository&) = delete;
  VersionRepository& operator=(const VersionRepository&) = delete;

  /// @name For the application to implement
  /// Called on the thread of the operation that needs the answer, never with a lock of the
  /// repository held. An implementation may call the repository's own operations, but none that
  /// leads back to the same question, which would never end: `findMetamodels` must not ask
  /// `getMetamodel`, nor `loadMetamodel` for the linked metamodels of the descriptor that is being
  /// linked. It must let pass what these operations throw, which need not be a std::exception: the
  /// search may then go another way.
  /// @{

  /// The semantic version that a text version of a metamodel stands for, if any. With none, which
  /// is the default, a text version satisfies no semantic range and counts as older than every
  /// semantic version.
  virtual std::optional<SemVer> getEquivalentSemVer(const std::u16string& metamodelName,
                                                    const std::u16string& versionText);

  /// The metamodel of that name and version, if there is one.
  ///
  /// By default the first one that `findMetamodels` lists for the single version; a text version
  /// that has a semantic equivalent is looked up by the equivalent.
  virtual std::optional<Metamodel> getMetamodel(const std::u16string& name,
                                                const VersionId& version);

  /// Appends to `result`, which is passed empty, every metamodel of that name whose version lies in
  /// `range`, in the preferred order. Nothing appended: nothing matches. The order decides which
  /// linked metamodels come first, and so which of several equal paths is found.
  virtual void findMetamodels(const std::u16string& name, const VersionRange& range,
                              std::vector<Metamodel>& result) = 0;

  /// Appends to `result`, which is passed empty, every hop that moves metamodel `name` away from
  /// version `from`, in either direction. `getMetamodel` must find the target of each of them. The
  /// order decides which of several equal paths is found.
  virtual void findHops(const std::u16string& name, const VersionId& from,
                        std::vector<Hop>& result) = 0;

  /// Called once for every new linked metamodel, after its dependencies are linked and before
  /// anybody else sees it: the place to register its types and packages (see `accessTag`). When it
  /// throws, nothing is kept for that metamodel; nor when it leaves a null pointer among the links,
  /// which is a std::logic_error. By default does nothing.
  virtual void loadMetamodel(const std::shared_ptr<LinkedMetamodel>& linked);

  /// @}
  /// @name Paths
  /// @{

  /// The least-weight path from any of `from` to a baseline that includes any of `to`, no hop going
  /// against `direction`.
  ///
  /// Absent: there is no path. Present and empty: a source includes a target. Otherwise the steps
  /// in the order of application; each step's `to` is the next one's `from`.
  ///
  /// Weights are those of `getWeight`. Among paths of equal weight, the one whose last step weighs
  /// most, then the one before it, and so on; then the first source in list order; then the first
  /// steps in the order of `getStepsFrom`. A path found before is returned from the cache, for the
  /// first pair of `from` and `to` in list order that has one, whatever the direction.
  ///
  /// Throws what the application throws, ConflictingDependencies and std::logic_error where the
  /// answer depends on a version that cannot be linked, or on a hop to a version that
  /// `getMetamodel` does not find. What lies off every path worth looking at need not be asked for.
  ///
  /// Cost: a question that trying few combinations of hops settles takes microseconds; others
  /// follow metamodels x versions on most catalogues, and some stay exponential in time and memory.
  std::optional<std::vector<BaselineHop>> findPath(const std::vector<VersionBaseline>& from,
                                                   const std::vector<VersionBaseline>& to,
                                                   Direction direction);

  /// The path between two baselines, in the direction from one to the other (`computeDirection`).
  /// Present and empty, without a search, when `from` includes `to`.
  std::optional<std::vector<BaselineHop>> findPath(const VersionBaseline& from,
                                                   const VersionBaseline& to);

  /// The path between two selections of one version for each name. Present and empty, without a
  /// search, when the selections are equal; absent when either cannot be combined into a baseline.
  /// The direction is that between the first baselines of each. Throws what `combine` throws as
  /// well.
  std::optional<std::vector<BaselineHop>> findPath(
      const std::unordered_map<std::u16string, VersionId>& from,
      const std::unordered_map<std::u16string, VersionId>& to);

  /// The path from any of some baselines to a selection. Present and empty, without a search, when
  /// a baseline of the selection equals a source; absent when the selection has no baseline, or no
  /// path leads to one. The direction is that between the first baselines of each. Throws what
  /// `combine` throws as well.
  std::optional<std::vector<BaselineHop>> findPath(
      const std::vector<VersionBaseline>& from,
      const std::unordered_map<std::u16string, VersionId>& to);

  /// The same for baselines listed in braces, which might as well begin a selection.
  std::optional<std::vector<BaselineHop>> findPath(
      std::initializer_list<VersionBaseline> from,
      const std::unordered_map<std::u16string, VersionId>& to) {
    return findPath(std::vector<VersionBaseline>(from), to);
  }

  /// @}
  /// @name Paths within limits
  /// The same questions, whose searches a host can bound, stop and watch (see `SearchLimits`). They
  /// throw SearchStopped when a limit is reached: then it is open whether there is a path.
  /// @{

  std::optional<std::vector<BaselineHop>> findPath(const std::vector<VersionBaseline>& from,
                                                   const std::vector<VersionBaseline>& to,
                                                   Direction direction, const SearchLimits& limits);
  std::optional<std::vector<BaselineHop>> findPath(const VersionBaseline& from,
                                                   const VersionBaseline& to,
                                                   const SearchLimits& limits);
  std::optional<std::vector<BaselineHop>> findPath(
      const std::unordered_map<std::u16string, VersionId>& from,
      const std::unordered_map<std::u16string, VersionId>& to, const SearchLimits& limits);
  std::optional<std::vector<BaselineHop>> findPath(
      const std::vector<VersionBaseline>& from,
      const std::unordered_map<std::u16string, VersionId>& to, const SearchLimits& limits);

  /// The path between two selections, in a direction that need not be the one that they have: no
  /// hop goes against `direction`. Paths found before are not looked up, nor is this one kept.
  std::optional<std::vector<BaselineHop>> findPathInDirection(
      const std::unordered_map<std::u16string, VersionId>& from,
      const std::unordered_map<std::u16string, VersionId>& to, Direction direction,
      const SearchLimits& limits = {});

  /// @}
  /// @name Weights and the cache
  /// @{

  /// The weight of one step: 1,000,000,000 for each expensive hop; one for each other hop, and one
  /// more if there is any other hop. So moving in lockstep weighs less than moving one after the
  /// other, and an expensive hop is taken only where every way without it is longer than any met in
  /// practice.
  unsigned long getWeight(const std::unordered_map<std::u16string, Hop>& hops) const;

  /// Forgets every path found. Waits for look-ups in progress, not for searches: a search that runs
  /// stores its path afterwards, which it may have found with hops of before. So after hops have
  /// changed, call it when no search runs, or once more when those that run have ended.
  ///
  /// Nobody is kept waiting by who comes later: this, linking and the storing of a path that was
  /// found wait for look-ups that have begun and for changes of the cache that were wanted before;
  /// a look-up waits for one change at most, however often others repeat theirs.
  void invalidatePathfindingCache();

  /// @}
  /// @name Steps
  /// @{

  /// Every step that leaves `from` in `direction`: every non-empty choice of at most one hop for
  /// each metamodel, once for each baseline that `createTargetBaseline` finds for it.
  ///
  /// Choices are listed as mixed-radix numbers, the first name in ascending order being the least
  /// significant digit, a digit 0 leaving the metamodel where it is and a digit d taking its d-th
  /// hop. Nothing is removed: different choices that lead to one baseline are different steps.
  ///
  /// Cost: the number of choices, which is the product over all metamodels of (hops + 1), for time;
  /// room for as many steps is reserved before the first is tried. The number is taken modulo 2^64,
  /// and just as many choices are tried: where the product is 2^64 or more, the list is short of
  /// steps and nothing tells so. The steps out of 64 metamodels with one hop each are none.
  ///
  /// Throws std::length_error when the number so taken is beyond any list,
  /// ConflictingDependencies when the target of a choice cannot be linked, and, when
  /// `direction` is not `Unknown`, std::logic_error for a hop whose target `getMetamodel` does not
  /// find.
  std::vector<BaselineHop> getStepsFrom(const VersionBaseline& from, Direction direction);

  /// The consistent baselines that the hops lead to from `baseline`, the metamodels that no hop
  /// moves keeping their versions; in the order of `combine`. All requirements of what they hold
  /// are met. Empty when there are no hops, when a target is unknown, or when the targets cannot
  /// stand together. Throws ConflictingDependencies when a target cannot be linked.
  std::vector<VersionBaseline> createTargetBaseline(
      const VersionBaseline& baseline, const std::unordered_map<std::u16string, Hop>& hops);

  /// @}
  /// @name Selections and linked metamodels
  /// @{

  /// Every consistent baseline that realises a selection of one version for each name, the first
  /// name in ascending order being the most significant digit. Empty when there is none, or for no
  /// names. None holds what a requirement excludes; one may lack what a requirement asks for, which
  /// the first step then has to bring in.
  ///
  /// Throws InvalidFamilyVersion for a version that the application does not know and
  /// ConflictingDependencies for one that cannot be linked, whichever the selection's map yields
  /// first; std::length_error when there would be more baselines than half of the machine's memory
  /// holds.
  std::vector<VersionBaseline> combine(
      const std::unordered_map<std::u16string, VersionId>& selection);

  /// The same for a selection of descriptors. The keys are taken as names as they stand.
  std::vector<VersionBaseline> combine(
      const std::unordered_map<std::u16string, Metamodel>& selection);

  /// The same, ending with SearchStopped when a limit is reached. Of what is linked, the limit on
  /// memory counts one version's linked metamodels while they are made.
  std::vector<VersionBaseline> combine(
      const std::unordered_map<std::u16string, VersionId>& selection, const SearchLimits& limits);

  /// The same within bounds of time and memory: no value when it would take more than about 5000
  /// linked metamodels beyond one of each version, or as many baselines. Throws what `combine`
  /// throws.
  std::optional<std::vector<VersionBaseline>> tryCombine(
      const std::unordered_map<std::u16string, VersionId>& selection);

  /// The linked metamodels of a descriptor, one for each consistent choice of dependencies, created
  /// on first demand. The list stays valid and unchanged for the repository's lifetime. Throws
  /// ConflictingDependencies when there is no consistent choice, and std::length_error when the
  /// list of a version would take more than half of the machine's memory.
  const std::vector<std::shared_ptr<LinkedMetamodel>>& getLinkedMetamodels(
      const Metamodel& metamodel);

  /// The same for the metamodel that `getMetamodel` finds; throws ConflictingDependencies when it
  /// finds none.
  const std::vector<std::shared_ptr<LinkedMetamodel>>& getLinkedMetamodels(
      const std::u16string& name, const VersionId& version);

  /// Whether metamodels may have requirements (see `useRequirements`).
  bool hasRequirements() const noexcept;

  /// What a metamodel requires, as the source in use tells it.
  std::vector<PeerRequirement> getRequirements(const Metamodel& metamodel);

  /// Creates and keeps the linked metamodels of a descriptor, dependencies first, and forgets every
  /// path found. Normally reached through `getLinkedMetamodels`. When there is a list already, that
  /// one stays; the new one is passed to `loadMetamodel` all the same and then dropped.
  ///
  /// Of two dependencies of one name, the candidates of both are linked, and those of the first are
  /// chosen from. Throws what `getLinkedMetamodels` throws. Cost: at most the product, over the
  /// dependencies, of the numbers of linked metamodels of their candidates.
  void createLinkedMetamodels(const Metamodel& metamodel);

  /// @}
  /// @name Versions and directions
  /// @{

  /// Whether the metamodel's version, or the semantic equivalent of its text version, lies in
  /// `range`.
  bool includes(const VersionRange& range, const Metamodel& metamodel);

  /// The metamodel's semantic version, or the equivalent of its text version, if there is one.
  std::optional<SemVer> extractSemVer(const Metamodel& metamodel);

  /// True when one of the two is `Forward` and the other `Backward`.
  static bool areDirectionsInconsistent(Direction a, Direction b);

  /// The name of the value, such as "Forward"; empty for a number that is none.
  static std::string getDirectionString(Direction direction);

  /// The direction from one version of a metamodel to another. A version without a semantic
  /// equivalent counts as older than any that has one; between two such versions it is `Unknown`.
  Direction getDirection(const Metamodel& from, const Metamodel& to);

  /// The common direction of all metamodels that both baselines hold. `Unknown` when some go
  /// forward and others backward, or when none moves; never `Equal`.
  Direction computeDirection(const VersionBaseline& from, const VersionBaseline& to);

  /// The direction in which `findPath` between two selections looks: that between the first
  /// baselines of each. Where these are many, the others are not made. No value when either
  /// selection has no baseline. Throws what `combine` throws, and SearchStopped when a limit is
  /// reached.
  std::optional<Direction> findDirection(const std::unordered_map<std::u16string, VersionId>& from,
                                         const std::unordered_map<std::u16string, VersionId>& to,
                                         const SearchLimits& limits = {});

  /// @}

 protected:
  /// The pass key with which `loadMetamodel` fills a new linked metamodel.
  static LinkedMetamodel::AccessTag accessTag() { return {}; }

  /// Every metamodel that is linked from here on has to meet what `source` tells of it; those
  /// linked before have no requirements. So call it before anything that has any is linked, such as
  /// in the constructor of the application's class. Any thread may call it. `source` must live as
  /// long as the repository is asked.
  void useRequirements(RequirementSource& source) noexcept;

 private:
  friend class RepositoryAccess;

  TARN_EVOLUTION_PATHFINDER_NO_EXPORT const std::vector<ResolvedRequirement>& requirementsOf(
      const Metamodel& metamodel);

  TARN_EVOLUTION_PATHFINDER_NO_EXPORT std::shared_ptr<LinkedMetamodel> linkAlone(
      const Metamodel& metamodel,
      const std::unordered_map<std::u16string, std::vector<std::shared_ptr<LinkedMetamodel>>>&
          chosen);

  struct Caches;
  std::unique_ptr<Caches> caches_;
};

}  // namespace tarn::evolution::pathfinder
