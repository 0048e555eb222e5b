#include "catalogue/model/validation.hpp"

#include <algorithm>

#include "catalogue/model/dependency_cycle.hpp"
#include "catalogue/text/unsoundness.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::VersionId;

namespace {

using Position = CatalogueIndex::Position;

/// The first of the metamodels at these positions whose own version is `version`.
Position firstWithVersion(const CatalogueContent& content,
                          const CatalogueIndex::Positions& positions, const VersionId& version) {
  return *std::find_if(positions.begin(), positions.end(), [&](Position position) {
    return content.metamodels[position].descriptor.version == version;
  });
}

void checkUnique(const CatalogueContent& content, const CatalogueIndex& index, Position position) {
  const pathfinder::Metamodel& descriptor = content.metamodels[position].descriptor;
  const auto& sameVersion = index.metamodelsAt(descriptor.name, descriptor.version);
  const Position first = firstWithVersion(content, sameVersion, descriptor.version);
  if (first != position) throw standsTwice(position, descriptor, "at " + metamodelPlace(first));
}

void checkEquivalent(const CatalogueContent& content, const CatalogueIndex& index,
                     Position position) {
  const auto& [descriptor, equivalent] = content.metamodels[position];
  if (!equivalent) return;
  for (const Position other : index.metamodelsAt(descriptor.name, *equivalent)) {
    const pathfinder::Metamodel& holder = content.metamodels[other].descriptor;
    if (other >= position || holder.version.isSemVer()) continue;
    throw sharesEquivalent(position, *equivalent, holder, "at " + metamodelPlace(other));
  }
}

void checkDependencies(const CatalogueContent& content, const CatalogueIndex& index,
                       Position position) {
  const auto& dependencies = content.metamodels[position].descriptor.dependencies;
  for (std::size_t i = 0; i < dependencies.size(); ++i) {
    if (index.hasMetamodel(dependencies[i].name)) continue;
    throw dependsOnUnknownName(position, i, dependencies[i].name);
  }
}

void checkHop(const CatalogueContent& content, const CatalogueIndex& index, Position position) {
  const Hop& hop = content.hops[position];
  if (!index.hasMetamodel(hop.name)) throw hopOfUnknownName(position, hop.name);
  if (index.metamodelsAt(hop.name, hop.from).empty()) {
    throw hopOfUnknownVersion(position, "from", hop.name, hop.from);
  }
  if (index.metamodelsAt(hop.name, hop.to).empty()) {
    throw hopOfUnknownVersion(position, "to", hop.name, hop.to);
  }
}

void checkCycles(const CatalogueContent& content, const CatalogueIndex& index) {
  const std::vector<Position> positions = findDependencyCycle(content.metamodels, index);
  if (positions.empty()) return;
  std::vector<pathfinder::Metamodel> cycle;
  cycle.reserve(positions.size());
  for (const Position position : positions) {
    cycle.push_back(content.metamodels[position].descriptor);
  }
  throw dependsOnItself(positions.front(), cycle);
}

}  // namespace

void validate(const CatalogueContent& content, const CatalogueIndex& index) {
  for (Position position = 0; position < content.metamodels.size(); ++position) {
    checkUnique(content, index, position);
    checkEquivalent(content, index, position);
    checkDependencies(content, index, position);
  }
  for (Position position = 0; position < content.hops.size(); ++position) {
    checkHop(content, index, position);
  }
  checkCycles(content, index);
}

}  // namespace tarn::evolution::catalogue
