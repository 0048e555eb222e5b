#pragma once

#include <memory>
#include <string>
#include <vector>

#include "pathfinder/linked_metamodel.hpp"
#include "pathfinder/metamodel.hpp"
#include "pathfinder/requirement.hpp"

namespace tarn::evolution::pathfinder {

/// What linking asks of its repository. Any operation may throw what the application throws.
class LinkingHost {
 public:
  virtual void findMetamodels(const std::u16string& name, const VersionRange& range,
                              std::vector<Metamodel>& result) = 0;
  virtual void findRequirements(const Metamodel& metamodel,
                                std::vector<PeerRequirement>& result) = 0;
  virtual void loadMetamodel(const std::shared_ptr<LinkedMetamodel>& linked) = 0;

  /// Told when a descriptor has got its linked metamodels.
  virtual void noteLinked() = 0;

 protected:
  ~LinkingHost() = default;
};

}  // namespace tarn::evolution::pathfinder
