#pragma once

#include <optional>
#include <string>
#include <vector>

#include "pathfinder/version_repository.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// Why the metamodels of a step move together, and which of them could have gone before the others.
namespace tarn::evolution::catalogue {

/// One metamodel cannot take its part in a step unless another one takes its part as well, for one
/// of both needs the other:
///
/// - the mover at the version that it comes to needs the companion, which before the step is at a
///   version that will not do, or is not there at all and enters; or
/// - the companion at the version that it leaves needs the mover, whose new version will not do.
///
/// Parts are hops and what enters with the step.
struct TARN_EVOLUTION_CATALOGUE_EXPORT StepTie {
  std::u16string mover;
  std::u16string companion;

  /// The one of both that has the requirement; what it needs without linking it stands after its
  /// dependencies.
  pathfinder::Metamodel dependent;
  std::size_t dependency;  ///< an index of that list

  /// The version of the one required, held before or after the step, that lies outside the range.
  /// None: the companion enters.
  std::optional<pathfinder::VersionId> refused;

  const pathfinder::Dependency& requirement() const {
    return dependent.dependencies.at(dependency);
  }
};

/// All ties of a step of `repository`, by ascending mover, then companion. Asks the repository for
/// the versions of one range for each dependency of one part of the step on another.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<StepTie> tiesOf(
    pathfinder::VersionRepository& repository, const pathfinder::BaselineHop& step);

/// The parts of a step, in bundles that ties hold together: the names of one bundle, ascending,
/// cannot be divided, and each bundle could be a step of its own once those before it are done. So
/// a step of several bundles is one because that weighs less. What enters is in the bundle of the
/// first that needs it.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<std::vector<std::u16string>> bundlesOf(
    const pathfinder::BaselineHop& step, const std::vector<StepTie>& ties);

/// "kuadrant-operator 0.5.0 needs limitador-operator 0.7.0, not 0.6.0"; of what enters
/// "B 2.0.0 needs C spring, which enters". UTF-8 as the catalogue has it, not safe to print.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string describe(const StepTie& tie);

}  // namespace tarn::evolution::catalogue
