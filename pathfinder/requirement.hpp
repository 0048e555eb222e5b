#pragma once

#include <string>
#include <vector>

#include "pathfinder/metamodel.hpp"
#include "pathfinder/version_id.hpp"

namespace tarn::evolution::pathfinder {

/// What has to stand beside a metamodel in every baseline that a step leads to, without being
/// linked to it: some version of another name that `findMetamodels` lists for the range.
///
/// Unlike a dependency it brings nothing in, and may be mutual: for metamodels that need each
/// other, and for those that are needed only if they are there.
struct PeerRequirement {
  std::u16string name;
  VersionRange range;
  bool isOptional = false;  ///< also met by a baseline that holds nothing under the name
};

/// Tells the requirements of metamodels. An application whose metamodels have any hands one to its
/// repository (see `VersionRepository::useRequirements`), mostly itself.
class RequirementSource {
 public:
  /// Appends to `result`, which is passed empty, what `metamodel` requires. Several requirements on
  /// one name have to be met together.
  ///
  /// Called for every version that is linked or that a search looks at, on any thread, without a
  /// lock held. Asked the same twice, it must answer the same. What it throws is treated as what
  /// `VersionRepository::findMetamodels` throws, and nothing is kept for the metamodel.
  virtual void findRequirements(const Metamodel& metamodel,
                                std::vector<PeerRequirement>& result) = 0;

 protected:
  RequirementSource() = default;
  RequirementSource(const RequirementSource&) = default;
  RequirementSource& operator=(const RequirementSource&) = default;
  ~RequirementSource() = default;
};

}  // namespace tarn::evolution::pathfinder
