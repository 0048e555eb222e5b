#pragma once

#include <string>
#include <vector>

#include "pathfinder/hop.hpp"
#include "pathfinder/linking/version_lookup.hpp"
#include "pathfinder/search/direction.hpp"

namespace tarn::evolution::pathfinder {

/// What a search asks of its repository.
class SearchHost : public VersionLookup {
 public:
  virtual void findHops(const std::u16string& name, const VersionId& from,
                        std::vector<Hop>& result) = 0;

  /// The direction from one version of a metamodel to another.
  virtual Direction directionBetween(const Metamodel& from, const Metamodel& to) = 0;

 protected:
  ~SearchHost() = default;
};

}  // namespace tarn::evolution::pathfinder
