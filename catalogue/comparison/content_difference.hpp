#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "catalogue/catalogue.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// What differs between two catalogues, one called the former and the other the present one.
namespace tarn::evolution::catalogue {

/// A version that only one of them has, or that is another in each.
struct VersionDifference {
  std::optional<CatalogueMetamodel> former;
  std::optional<CatalogueMetamodel> present;

  const CatalogueMetamodel& any() const { return present ? *present : *former; }
};

/// A hop of which this is true. One that a catalogue has several times counts once, as the first of
/// least weight.
struct HopDifference {
  std::optional<pathfinder::Hop> former;
  std::optional<pathfinder::Hop> present;

  const pathfinder::Hop& any() const { return present ? *present : *former; }
};

/// What differs, whatever the order of the catalogues.
struct ContentDifference {
  std::vector<VersionDifference> versions;  ///< those of the present one in its order, then others
  std::vector<HopDifference> hops;          ///< the same

  bool isNone() const { return versions.empty() && hops.empty(); }
};

/// Takes time and memory linear in both.
TARN_EVOLUTION_CATALOGUE_EXPORT ContentDifference
differenceBetween(const CatalogueContent& former, const CatalogueContent& present);

/// "limitador-operator 0.12.0, added, with its hops" and the like; safe on a terminal.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string describe(const VersionDifference& difference);
TARN_EVOLUTION_CATALOGUE_EXPORT std::string describe(const HopDifference& difference);

/// The catalogue without some versions, the hops from and to them, and all versions that depend on
/// a metamodel of which none is left, with theirs. Without its question. Throws
/// std::invalid_argument for a version that it does not hold.
TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueContent withoutVersions(const CatalogueContent& content,
                                                                 const Selection& withdrawn);

}  // namespace tarn::evolution::catalogue
