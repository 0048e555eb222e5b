#pragma once

#include <memory>
#include <string>
#include <vector>

#include "pathfinder/linking/option_linking.hpp"
#include "pathfinder/requirement.hpp"
#include "pathfinder/search/search_host.hpp"

namespace tarn::evolution::pathfinder {

/// What a search between selections asks of its repository.
class SelectionHost : public SearchHost {
 public:
  virtual void findMetamodels(const std::u16string& name, const VersionRange& range,
                              std::vector<Metamodel>& result) = 0;
  virtual void findRequirements(const Metamodel& metamodel,
                                std::vector<PeerRequirement>& result) = 0;

  /// Of the linked metamodels of a descriptor just the one that links these, one for each name that
  /// it depends on. Throws ConflictingDependencies when they disagree.
  virtual std::shared_ptr<LinkedMetamodel> linkAlone(const Metamodel& metamodel,
                                                     const OptionsByName& chosen) = 0;

 protected:
  ~SelectionHost() = default;
};

}  // namespace tarn::evolution::pathfinder
