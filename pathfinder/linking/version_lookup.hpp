#pragma once

#include <optional>
#include <string>

#include "pathfinder/linking/linked_metamodel_cache.hpp"
#include "pathfinder/linking/requirements.hpp"
#include "pathfinder/metamodel.hpp"

namespace tarn::evolution::pathfinder {

/// What can be looked up of a repository's versions. Any operation may throw what the application
/// throws.
class VersionLookup {
 public:
  virtual std::optional<Metamodel> getMetamodel(const std::u16string& name,
                                                const VersionId& version) = 0;

  /// The repository's own list, which stays as it is. Throws ConflictingDependencies when there is
  /// no consistent choice of dependencies.
  virtual const LinkedMetamodels& getLinkedMetamodels(const Metamodel& metamodel) = 0;

  /// Whether metamodels may have requirements.
  virtual bool hasRequirements() = 0;

  /// What a metamodel requires; links it, and throws what that throws. The repository's own list,
  /// which stays as it is.
  virtual const ResolvedRequirements& requirementsOf(const Metamodel& metamodel) = 0;

 protected:
  ~VersionLookup() = default;
};

}  // namespace tarn::evolution::pathfinder
