#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/store/store_progress.hpp"
#include "pathfinder/metamodel.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// Changes to a store, made or only tried (see `ChangeMode`). Each makes a new file that takes the
/// store's place when it is complete: all of it happens, or nothing, also when the process is
/// killed or power fails. Others may read the store meanwhile and go on seeing what they saw; two
/// changes at a time wait for one another, up to five seconds. Costs the time and the room on the
/// disk to copy the store.
///
/// Everything here throws CatalogueError, which names the file that is at fault.
namespace tarn::evolution::catalogue {

/// Adds the metamodels, hops and question of a JSON file, which has the form of a catalogue but may
/// lean on what the store holds, after those of the store. Refuses, with places in the JSON file,
/// what would leave the store unsound (see `Catalogue`), a hop that stands in the store or in the
/// file already, and a question when the store has one.
TARN_EVOLUTION_CATALOGUE_EXPORT StoreCounts addToStore(const std::filesystem::path& store,
                                                       const std::filesystem::path& json,
                                                       const StoreProgress& progress = {},
                                                       ChangeMode mode = ChangeMode::Made);

/// What a change comes to.
struct ChangeResult {
  StoreCounts changed;    ///< versions and hops that are other than before
  StoreCounts unchanged;  ///< those that were so already
};

/// Puts each metamodel, hop and question of a JSON file, which has the form of a catalogue, in the
/// place of the one that the store holds: a version gets the dependencies, equivalent and notes
/// that the file tells, none where it tells none, and a hop its weight and note, also where it
/// stands several times. The order of the store stays. Refuses, with places in the JSON file, a
/// version or hop that the store does not hold or the file holds twice, and what would leave the
/// store unsound (see `Catalogue`).
TARN_EVOLUTION_CATALOGUE_EXPORT ChangeResult changeStore(const std::filesystem::path& store,
                                                         const std::filesystem::path& json,
                                                         const StoreProgress& progress = {},
                                                         ChangeMode mode = ChangeMode::Made);

/// What to remove: a version of a metamodel, or all of its versions, or a hop.
struct RemovalChoice {
  std::u16string name;
  std::optional<pathfinder::VersionId> version;
  std::optional<pathfinder::VersionId> to = std::nullopt;  ///< the hop from `version` to this one
};

/// A metamodel that stays, and the dependency that it would no longer have anything for.
struct RemovalObstacle {
  pathfinder::Metamodel dependent;
  std::size_t dependency;  ///< an index of its list
};

/// "B@2.0.0 depends on A [1.0.0, 2.0.0)".
TARN_EVOLUTION_CATALOGUE_EXPORT std::string describe(const RemovalObstacle& obstacle);

struct RemovalResult {
  StoreCounts removed;                     ///< nothing when there are obstacles
  std::vector<RemovalObstacle> obstacles;  ///< in the store's order, at most `listedObstacles`
  std::uint64_t obstacleCount = 0;
};

constexpr std::size_t listedObstacles = 20;

/// Removes versions, the hops that lead from or to a version that is then no longer there, and the
/// hops that are chosen. The order of all else stays, and so does the store's question, even if it
/// names what is removed.
///
/// An obstacle is a dependency, of a version that stays, that was satisfied by versions of which
/// none stays, or whose name has no version left; an optional one is none. Where there is any
/// obstacle, nothing is removed. Throws CatalogueError also for a choice that the store does not
/// hold.
TARN_EVOLUTION_CATALOGUE_EXPORT RemovalResult
removeFromStore(const std::filesystem::path& store, const std::vector<RemovalChoice>& choices,
                const StoreProgress& progress = {}, ChangeMode mode = ChangeMode::Made);

}  // namespace tarn::evolution::catalogue
