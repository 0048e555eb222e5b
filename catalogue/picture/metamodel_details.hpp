#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/picture/step_text.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// One version of a metamodel with all that leads there and away.
struct TARN_EVOLUTION_CATALOGUE_EXPORT VersionDetails {
  CatalogueMetamodel metamodel;
  std::vector<pathfinder::Hop> hopsIn;   ///< in the catalogue's order
  std::vector<pathfinder::Hop> hopsOut;  ///< in the catalogue's order
  HopNotes hopNotes;                     ///< of both

  /// Its linked metamodels, one for each consistent choice of what it needs; none when it cannot be
  /// linked, no value when that was not asked for.
  std::optional<std::vector<std::shared_ptr<pathfinder::LinkedMetamodel>>> variants;
};

/// A metamodel and its versions: those without a precedence first, then by ascending
/// precedence.
struct TARN_EVOLUTION_CATALOGUE_EXPORT MetamodelDetails {
  std::u16string name;
  std::vector<VersionDetails> versions;
};

/// All versions of a metamodel. Throws std::invalid_argument, naming it, when there are none.
TARN_EVOLUTION_CATALOGUE_EXPORT MetamodelDetails describeMetamodel(BrowsableRepository& repository,
                                                                   const std::u16string& name);

/// One version of a metamodel, linked. Throws std::invalid_argument, naming what is missing.
TARN_EVOLUTION_CATALOGUE_EXPORT MetamodelDetails
describeVersion(BrowsableRepository& repository, const std::u16string& name,
                const pathfinder::VersionId& version);

/// How far the versions of a metamodel go, in the order of `MetamodelDetails`.
struct TARN_EVOLUTION_CATALOGUE_EXPORT MetamodelSummary {
  std::u16string name;
  std::size_t count;  ///< of versions
  pathfinder::VersionId first;
  pathfinder::VersionId last;
};

/// All metamodels of the repository, by ascending name. Reads every version once, the versions of
/// one name at a time.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<MetamodelSummary> summariseAll(
    BrowsableRepository& repository);

/// A line for each metamodel: how many versions, the first and the last.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeSummaryText(const std::vector<MetamodelSummary>& all,
                                                      Colouring colouring, std::ostream& out);

/// {"metamodels": [{"name", "versions", "first", "last"}]}, "versions" being their number.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeSummaryJson(const std::vector<MetamodelSummary>& all,
                                                      std::ostream& out);

/// Each version with what it needs and its hops, and its variants when they were asked for.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeDetailsText(const std::vector<MetamodelDetails>& details,
                                                      Colouring colouring, std::ostream& out);

/// {"metamodels": [{"name", "versions": [{"version", "semver", "note", "dependencies": [{"name",
/// "range", "note"}], "hopsIn": [{"from", "expensive", "note"}], "hopsOut": [{"to", "expensive",
/// "note"}], "variants": [{name: version}]}]}]}; "semver", "note" and "variants" only where there
/// is something to say, a variant being what the version is linked with.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeDetailsJson(const std::vector<MetamodelDetails>& details,
                                                      std::ostream& out);

/// The baselines of a selection, each with its metamodels; a "+" before what links bring in.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeBaselinesText(
    const std::vector<pathfinder::VersionBaseline>& baselines, const Selection& selection,
    Colouring colouring, std::ostream& out);

/// {"baselines": [{name: version}]}
TARN_EVOLUTION_CATALOGUE_EXPORT void writeBaselinesJson(
    const std::vector<pathfinder::VersionBaseline>& baselines, std::ostream& out);

}  // namespace tarn::evolution::catalogue
