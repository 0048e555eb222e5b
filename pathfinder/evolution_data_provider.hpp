#pragma once

#include <optional>
#include <string>
#include <vector>

#include "pathfinder/hop.hpp"
#include "pathfinder/metamodel.hpp"
#include "tarn_evolution_pathfinder_export.hpp"

namespace tarn::evolution {

/// A source of evolution data, for applications that gather what their repository knows from
/// several places: one provider per plug-in, say, all asked in turn by one class derived from
/// `pathfinder::VersionRepository`. The path finder itself never calls it, so who owns it, which
/// threads call it and what it throws is for the application to settle.
///
/// Lists are returned by appending to `result`, in the provider's preferred order.
class TARN_EVOLUTION_PATHFINDER_EXPORT EvolutionDataProvider {
 public:
  virtual ~EvolutionDataProvider();

  /// A name for messages to people, such as the plug-in's.
  virtual std::string getProviderName() const = 0;

  /// The names of all metamodels that the provider has versions or hops of.
  virtual void getMetamodelNames(std::vector<std::u16string>& result) = 0;

  /// The descriptors of metamodel `name` whose versions lie in `range`.
  virtual void findMetamodels(const std::u16string& name, const pathfinder::VersionRange& range,
                              std::vector<pathfinder::Metamodel>& result) = 0;

  /// The hops that leave version `from` of metamodel `name`, in either direction.
  virtual void findHops(const std::u16string& name, const pathfinder::VersionId& from,
                        std::vector<pathfinder::Hop>& result) = 0;

  /// The semantic version that a text version stands for, if the provider knows one.
  virtual std::optional<pathfinder::SemVer> getEquivalentSemVer(
      const std::u16string& metamodelName, const std::u16string& versionText) = 0;

  /// Whether the provider can still carry out `hop` on a model: a hop whose migration is no longer
  /// installed is known but not available.
  virtual bool canApply(const pathfinder::Hop& hop) = 0;
};

}  // namespace tarn::evolution
