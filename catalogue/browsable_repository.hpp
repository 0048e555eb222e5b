#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/catalogue.hpp"
#include "pathfinder/requirement.hpp"
#include "pathfinder/version_repository.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// A repository that can also list what it holds, as the tools need that explain and draw.
///
/// Every operation here may be called from any number of threads at once, as those of
/// `VersionRepository` may.
class TARN_EVOLUTION_CATALOGUE_EXPORT BrowsableRepository : public pathfinder::VersionRepository,
                                                            public pathfinder::RequirementSource {
 public:
  /// What a metamodel that the repository has handed out requires; by default nothing.
  void findRequirements(const pathfinder::Metamodel& metamodel,
                        std::vector<pathfinder::PeerRequirement>& result) override;

  /// Whether the metamodel is one that `findMetamodels` lists for the range. Unlike the operation
  /// of `VersionRepository`, which it hides, it understands every range of a catalogue, and goes by
  /// precedence.
  bool includes(const pathfinder::VersionRange& range, const pathfinder::Metamodel& metamodel) {
    std::vector<pathfinder::Metamodel> admitted;
    findMetamodels(metamodel.name, range, admitted);
    return std::find(admitted.begin(), admitted.end(), metamodel) != admitted.end();
  }

  /// The names of all metamodels, ascending.
  virtual std::vector<std::u16string> listNames() = 0;

  /// The versions of a metamodel, in the catalogue's order; none for an unknown name.
  virtual std::vector<CatalogueMetamodel> listMetamodels(const std::u16string& name) = 0;

  /// The hops of a metamodel, in the catalogue's order; none for an unknown name.
  virtual std::vector<pathfinder::Hop> listHops(const std::u16string& name) = 0;

  /// What is told of a version, for people to read; empty when that is nothing, or it is unknown.
  /// By default that of `listMetamodels`.
  virtual std::u16string findVersionNote(const std::u16string& name,
                                         const pathfinder::VersionId& version);

  /// The same of a hop, which none has by default.
  virtual std::u16string findHopNote(const pathfinder::Hop& hop);

  /// The question that the catalogue comes with, if any.
  virtual std::optional<Question> getQuestion() = 0;
};

}  // namespace tarn::evolution::catalogue
