#pragma once

#include <vector>

#include "catalogue/catalogue.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The questions that a comparison asks if nobody has others, those of one metamodel together.
///
/// Hops to newer versions make chains of the versions of a metamodel. Of each such set of versions
/// that hops hold together, in the former catalogue, or in the present one where the former has no
/// hop of the metamodel: the way from each version where chains begin to each where they end, at
/// most `mostOfOneSet`, from the oldest and to the newest first. And from the newest version where
/// one ends in the former catalogue to the newest in the present one, if that is another one.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<Question> headsToHeads(const Catalogue& former,
                                                                   const Catalogue& present);

constexpr std::size_t mostOfOneSet = 16;

}  // namespace tarn::evolution::catalogue
