#include "catalogue/explanation/hops_against.hpp"

#include <map>

namespace tarn::evolution::catalogue {

using pathfinder::BaselineHop;
using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::VersionRepository;

std::vector<Hop> hopsAgainst(VersionRepository& repository, Direction direction, const Path& path) {
  std::vector<Hop> result;
  for (const BaselineHop& step : path) {
    for (const auto& [name, hop] : std::map(step.hops.begin(), step.hops.end())) {
      const Metamodel& before = *step.from.metamodels.at(name);
      const Metamodel& after = *step.to.metamodels.at(name);
      const Direction itsDirection = repository.getDirection(before, after);
      if (VersionRepository::areDirectionsInconsistent(direction, itsDirection)) {
        result.push_back(hop);
      }
    }
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
