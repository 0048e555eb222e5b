#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "catalogue/catalogue_error.hpp"
#include "pathfinder/metamodel.hpp"

/// What is said of the ways in which a catalogue can be unsound, whatever form it has. Positions
/// are those in the lists of the JSON form, and places are JSON pointers.
namespace tarn::evolution::catalogue {

std::string metamodelPlace(std::size_t position);
std::string hopPlace(std::size_t position);

/// `where` the version stands already: "at /metamodels/3", say.
CatalogueError standsTwice(std::size_t position, const pathfinder::Metamodel& metamodel,
                           const std::string& where);

/// `holder` is the other version that has the equivalent, and `where` it stands.
CatalogueError sharesEquivalent(std::size_t position, const pathfinder::SemVer& equivalent,
                                const pathfinder::Metamodel& holder, const std::string& where);

CatalogueError dependsOnUnknownName(std::size_t position, std::size_t dependency,
                                    const std::u16string& name);

CatalogueError hopOfUnknownName(std::size_t position, const std::u16string& name);

/// `end` is "from" or "to".
CatalogueError hopOfUnknownVersion(std::size_t position, const std::string& end,
                                   const std::u16string& name,
                                   const pathfinder::VersionId& version);

/// Each metamodel of the cycle has a version of the next one among its candidates, the last one of
/// the first, which stands at `position`.
CatalogueError dependsOnItself(std::size_t position,
                               const std::vector<pathfinder::Metamodel>& cycle);

/// The cycle as text, without a place. Of a long one the beginning.
std::string describeCycle(const std::vector<pathfinder::Metamodel>& cycle);

}  // namespace tarn::evolution::catalogue
