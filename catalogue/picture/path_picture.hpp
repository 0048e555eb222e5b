#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/catalogue.hpp"
#include "catalogue/picture/step_ties.hpp"
#include "pathfinder/version_repository.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// What a path does, ready to be shown: a lane for each metamodel, a column for each step. All
/// texts are UTF-8 as the catalogue has them; it is for the writers to escape them. A plain value,
/// independent of the path and of the repository.
struct TARN_EVOLUTION_CATALOGUE_EXPORT PathPicture {
  enum class MoveKind {
    Ordinary,
    Expensive,
    Entering,  ///< not held before: a link of another metamodel brings it in
    // As hosts may write them.
    ordinary = Ordinary,
    expensive = Expensive,
    entering = Entering,
  };

  /// One metamodel's part in a step.
  struct Move {
    std::size_t lane;
    std::string from;  ///< empty for one that enters
    std::string to;
    MoveKind kind;

    /// What the catalogue tells of the hop and of the version it leads to (see `addNotes`).
    std::vector<std::string> notes = {};
  };

  /// Why one lane cannot take its part in a step without another one's (see `StepTie`).
  struct Tie {
    std::size_t mover;
    std::size_t companion;
    std::string reason;  ///< "A 2.0.0 needs B 3.0.0, not 2.0.0"
  };

  struct Step {
    std::vector<Move> moves;  ///< hops by ascending lane, then what enters, by ascending lane
    std::uint64_t weight;

    std::vector<Tie> ties = {};  ///< see `addTies`

    /// The lanes that cannot be divided, ascending, as `bundlesOf` has them: of several bundles,
    /// each could be a step of its own, and all are one step because that weighs less.
    std::vector<std::vector<std::size_t>> bundles = {};
  };

  struct Lane {
    std::string name;
    std::string start;  ///< its version before the first step; empty when it is brought in later
    bool isMoved;       ///< whether any step moves it or brings it in
  };

  std::vector<Lane> lanes;  ///< by ascending name
  std::vector<Step> steps;
  std::uint64_t weight = 0;  ///< of all steps

  /// Of a path that is not proven to be the one asked for: none weighs less than this.
  std::optional<std::uint64_t> leastProven = std::nullopt;
};

/// What a step weighs, such as `weightsOf` a repository.
using StepWeights = std::function<std::uint64_t(const pathfinder::LockstepHop&)>;

/// Those of the path finder (`VersionRepository::getWeight`). Refers to the repository.
inline StepWeights weightsOf(const pathfinder::VersionRepository& repository) {
  return [&repository](const pathfinder::LockstepHop& hops) { return repository.getWeight(hops); };
}

/// The picture of a path that starts at `source`, or of `source` alone when there are no steps.
TARN_EVOLUTION_CATALOGUE_EXPORT PathPicture
drawPath(const StepWeights& weights, const pathfinder::VersionBaseline& source,
         const std::vector<pathfinder::BaselineHop>& path);

/// The picture of a path that starts where its first step does; without steps, of nothing.
TARN_EVOLUTION_CATALOGUE_EXPORT PathPicture
drawPath(const StepWeights& weights, const std::vector<pathfinder::BaselineHop>& path);

/// The same as with `weightsOf(repository)`.
TARN_EVOLUTION_CATALOGUE_EXPORT PathPicture
drawPath(const pathfinder::VersionRepository& repository, const pathfinder::VersionBaseline& source,
         const std::vector<pathfinder::BaselineHop>& path);

/// The picture of a path that starts at a selection and has nothing to do: its versions.
TARN_EVOLUTION_CATALOGUE_EXPORT PathPicture drawSelection(const Selection& selection);

/// Adds to each step of a path's picture why its parts go together.
TARN_EVOLUTION_CATALOGUE_EXPORT void addTies(pathfinder::VersionRepository& repository,
                                             const std::vector<pathfinder::BaselineHop>& path,
                                             PathPicture& picture);

/// The same with what `tiesOf` answers for each step.
TARN_EVOLUTION_CATALOGUE_EXPORT void addTies(const std::vector<pathfinder::BaselineHop>& path,
                                             const std::vector<std::vector<StepTie>>& ties,
                                             PathPicture& picture);

/// Adds to each move what the repository tells of its hop, and of its new version.
TARN_EVOLUTION_CATALOGUE_EXPORT void addNotes(BrowsableRepository& repository,
                                              PathPicture& picture);

/// One place of the picture: a lane at a step, or at the start.
struct TARN_EVOLUTION_CATALOGUE_EXPORT PathCell {
  enum class Kind {
    Absent,  ///< not held yet
    Start,
    Unmoved,
    Move,
    // As hosts may write them.
    absent = Absent,
    start = Start,
    unmoved = Unmoved,
    move = Move,
  };

  Kind kind = Kind::Absent;
  std::string version;                      ///< held here; empty when absent
  const PathPicture::Move* move = nullptr;  ///< of kind `Move`; refers to the picture

  /// Which parts of a line that ties the step's moves together cross this place.
  bool isTiedUpward = false;
  bool isTiedDownward = false;

  /// The same for the parts that the tied lanes need not go together for.
  bool isLooseUpward = false;
  bool isLooseDownward = false;
};

/// The places of a picture, by lane, then by column; column 0 is the start, column n step n.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<std::vector<PathCell>> layOutCells(
    const PathPicture& picture);

/// "27"; "78 expensive, 411" for what weighs as much as 78 expensive hops and 411 more.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string weightText(std::uint64_t weight);

/// "9 steps, weight 27"; with what is open of a path that is not proven.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string summarise(const PathPicture& picture);

/// "kuadrant-operator from 0.4.0 to 0.4.1, expensive: loses its settings": a move in words, with
/// its notes.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string describe(const PathPicture& picture,
                                                     const PathPicture::Move& move);

}  // namespace tarn::evolution::catalogue
