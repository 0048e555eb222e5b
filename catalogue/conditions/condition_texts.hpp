#pragma once

#include <optional>
#include <string>

#include "catalogue/conditions/conditional_path.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// Conditions as people write them. Each operation adds one, and throws std::invalid_argument, with
/// a reason to show, for what `repository` does not know; then nothing is added.
namespace tarn::evolution::catalogue {

/// To keep clear of the versions that `range` means (see `versionsMeant`).
TARN_EVOLUTION_CATALOGUE_EXPORT void addAvoided(BrowsableRepository& repository,
                                                const std::u16string& name,
                                                const std::string& range,
                                                PathConditions& conditions);

/// Not to move a metamodel or, with a version, not to leave that once it is reached.
TARN_EVOLUTION_CATALOGUE_EXPORT void addPinned(BrowsableRepository& repository,
                                               const std::u16string& name,
                                               const std::optional<std::string>& version,
                                               PathConditions& conditions);

/// To pass a version.
TARN_EVOLUTION_CATALOGUE_EXPORT void addVia(BrowsableRepository& repository,
                                            const std::u16string& name, const std::string& version,
                                            PathConditions& conditions);

}  // namespace tarn::evolution::catalogue
