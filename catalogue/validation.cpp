#include "catalogue/validation.hpp"

#include <algorithm>
#include <sstream>
#include <string>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/dependency_cycle.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::VersionId;

namespace {

using Position = CatalogueIndex::Position;

std::string metamodelPlace(Position position) {
  return "/metamodels/" + std::to_string(position);
}

std::string hopPlace(Position position) {
  return "/hops/" + std::to_string(position);
}

std::string quoted(const std::u16string& text) {
  return "\"" + fl::i18n::ustring_to_utf8(text) + "\"";
}

template <class Value>
std::string printed(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

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
  if (first == position) return;
  throw CatalogueError(metamodelPlace(position),
                       printed(descriptor) + " stands already at " + metamodelPlace(first));
}

void checkEquivalent(const CatalogueContent& content, const CatalogueIndex& index,
                     Position position) {
  const auto& [descriptor, equivalent] = content.metamodels[position];
  if (!equivalent) return;
  for (const Position other : index.metamodelsAt(descriptor.name, *equivalent)) {
    const pathfinder::Metamodel& holder = content.metamodels[other].descriptor;
    if (other >= position || holder.version.isSemVer()) continue;
    throw CatalogueError(metamodelPlace(position) + "/semver",
                         printed(*equivalent) + " is already the equivalent of " + printed(holder) +
                             " at " + metamodelPlace(other));
  }
}

void checkDependencies(const CatalogueContent& content, const CatalogueIndex& index,
                       Position position) {
  const auto& dependencies = content.metamodels[position].descriptor.dependencies;
  for (std::size_t i = 0; i < dependencies.size(); ++i) {
    if (index.hasMetamodel(dependencies[i].name)) continue;
    throw CatalogueError(metamodelPlace(position) + "/dependencies/" + std::to_string(i) + "/name",
                         "there is no metamodel " + quoted(dependencies[i].name));
  }
}

void checkHopEnd(const CatalogueIndex& index, const Hop& hop, const VersionId& version,
                 const std::string& place) {
  if (!index.metamodelsAt(hop.name, version).empty()) return;
  throw CatalogueError(
      place, "there is no version " + printed(version) + " of metamodel " + quoted(hop.name));
}

void checkHop(const CatalogueContent& content, const CatalogueIndex& index, Position position) {
  const Hop& hop = content.hops[position];
  if (!index.hasMetamodel(hop.name)) {
    throw CatalogueError(hopPlace(position) + "/name", "there is no metamodel " + quoted(hop.name));
  }
  checkHopEnd(index, hop, hop.from, hopPlace(position) + "/from");
  checkHopEnd(index, hop, hop.to, hopPlace(position) + "/to");
}

void checkCycles(const CatalogueContent& content, const CatalogueIndex& index) {
  const std::vector<Position> cycle = findDependencyCycle(content.metamodels, index);
  if (cycle.empty()) return;
  std::string text;
  for (const Position position : cycle) {
    text += printed(content.metamodels[position].descriptor) + " -> ";
  }
  text += printed(content.metamodels[cycle.front()].descriptor);
  throw CatalogueError(metamodelPlace(cycle.front()) + "/dependencies",
                       "the dependencies form a cycle: " + text);
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
