#include "catalogue/text/unsoundness.hpp"

#include <algorithm>
#include <cstddef>

#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Metamodel;

std::string metamodelPlace(std::size_t position) {
  return "/metamodels/" + std::to_string(position);
}

std::string hopPlace(std::size_t position) {
  return "/hops/" + std::to_string(position);
}

CatalogueError standsTwice(std::size_t position, const Metamodel& metamodel,
                           const std::string& where) {
  return {metamodelPlace(position), textOf(metamodel) + " stands already " + where};
}

CatalogueError sharesEquivalent(std::size_t position, const pathfinder::SemVer& equivalent,
                                const Metamodel& holder, const std::string& where) {
  return {metamodelPlace(position) + "/semver",
          textOf(equivalent) + " is already the equivalent of " + textOf(holder) + " " + where};
}

CatalogueError dependsOnUnknownName(std::size_t position, std::size_t dependency,
                                    const std::u16string& name) {
  return {metamodelPlace(position) + "/dependencies/" + std::to_string(dependency) + "/name",
          "there is no metamodel " + quotedName(name)};
}

CatalogueError hopOfUnknownName(std::size_t position, const std::u16string& name) {
  return {hopPlace(position) + "/name", "there is no metamodel " + quotedName(name)};
}

CatalogueError hopOfUnknownVersion(std::size_t position, const std::string& end,
                                   const std::u16string& name,
                                   const pathfinder::VersionId& version) {
  return {hopPlace(position) + "/" + end,
          "there is no version " + textOf(version) + " of metamodel " + quotedName(name)};
}

CatalogueError dependsOnItself(std::size_t position, const std::vector<Metamodel>& cycle) {
  return {metamodelPlace(position) + "/dependencies", describeCycle(cycle)};
}

std::string describeCycle(const std::vector<Metamodel>& cycle) {
  constexpr std::size_t mostNamed = 10;
  const std::size_t named = std::min(cycle.size(), mostNamed);
  std::string text = "the dependencies form a cycle: ";
  for (std::size_t i = 0; i < named; ++i) text += textOf(cycle[i]) + " -> ";
  if (named < cycle.size()) text += std::to_string(cycle.size() - named) + " more -> ";
  return text + textOf(cycle.front());
}

}  // namespace tarn::evolution::catalogue
