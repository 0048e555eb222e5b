#include "floor.hpp"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace bench {

using tarn::evolution::pathfinder::Hop;
using tarn::evolution::pathfinder::VersionId;

namespace {

using Hops = std::vector<Hop>;
using Versions = std::vector<VersionId>;

bool holds(const Versions& versions, const VersionId& version) {
  return std::find(versions.begin(), versions.end(), version) != versions.end();
}

/// The versions that hops lead to from `start`, or, with the ends exchanged, that lead there.
Versions within(const Hops& hops, const VersionId& start, VersionId Hop::*from,
                VersionId Hop::*to) {
  Versions reached{start};
  for (std::size_t i = 0; i < reached.size(); ++i) {
    const VersionId version = reached[i];
    for (const Hop& hop : hops) {
      if (hop.*from == version && !holds(reached, hop.*to)) reached.push_back(hop.*to);
    }
  }
  return reached;
}

std::map<std::u16string, Hops> hopsByName(const Catalogue& catalogue) {
  std::map<std::u16string, Hops> hops;
  for (const Hop& hop : catalogue.hops()) hops[hop.name].push_back(hop);
  return hops;
}

}  // namespace

Floor::Floor(const Catalogue& catalogue) {
  const auto& [from, to] = *catalogue.question();
  const std::map<std::u16string, Hops> hops = hopsByName(catalogue);
  for (const auto& [name, source] : std::map(from.begin(), from.end())) {
    const auto named = hops.find(name);
    const Hops& own = named == hops.end() ? Hops() : named->second;
    const Versions ahead = within(own, source, &Hop::from, &Hop::to);
    const auto target = to.find(name);
    const Versions useful =
        target == to.end() ? ahead : within(own, target->second, &Hop::to, &Hop::from);
    for (const VersionId& version : ahead) {
      if (holds(useful, version)) versions_.push_back({name, version});
    }
  }
}

std::size_t Floor::run(CatalogueRepository& repository) const {
  std::size_t linked = 0;
  std::vector<Hop> hops;
  for (const auto& [name, version] : versions_) {
    const auto metamodel = repository.getMetamodel(name, version);
    if (!metamodel) throw std::logic_error("A version of the question is not in the catalogue");
    hops.clear();
    repository.findHops(name, version, hops);
    linked += repository.getLinkedMetamodels(*metamodel).size();
  }
  return linked;
}

}  // namespace bench
