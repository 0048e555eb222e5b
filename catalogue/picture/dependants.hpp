#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/picture/step_text.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A version that depends on a metamodel, and what its range leaves to choose from.
struct Dependant {
  pathfinder::Metamodel dependent;
  pathfinder::Dependency needed;
  bool isOptional;                                ///< whether it is needed only if it is there
  std::vector<pathfinder::VersionId> candidates;  ///< the versions that the range admits, in the
                                                  ///< catalogue's order
};

/// Who depends on a metamodel, or on one version of it.
struct Dependants {
  std::u16string name;
  std::optional<pathfinder::VersionId> version;

  /// By ascending name, those of one name in the catalogue's order.
  std::vector<Dependant> dependants;
};

/// All versions that depend on a metamodel directly; with a version, only those whose range admits
/// it. Unknown ones have none. Reads every version once, the versions of one name at a time, and
/// looks each range up once.
TARN_EVOLUTION_CATALOGUE_EXPORT Dependants
findDependants(BrowsableRepository& repository, const std::u16string& name,
               const std::optional<pathfinder::VersionId>& version = std::nullopt);

/// A line for each, with its range and how many versions that admits; where it admits one alone,
/// that is said.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeDependantsText(const std::vector<Dependants>& all,
                                                         Colouring colouring, std::ostream& out);

/// {"metamodels": [{"name", "version", "neededBy": [{"name", "version", "needs": {"name", "range"},
/// "optional", "candidates", "only"}]}]}; the first "version" only where one was asked for,
/// "candidates" being their number, "only" the one candidate where there is one alone, and
/// "optional" true where it is.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeDependantsJson(const std::vector<Dependants>& all,
                                                         std::ostream& out);

}  // namespace tarn::evolution::catalogue
