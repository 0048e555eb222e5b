#pragma once

#include <string>

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// A text of its own for each name and version.
std::u16string keyOf(const std::u16string& name, const pathfinder::VersionId& version);

/// The same for each name and range.
std::u16string keyOf(const std::u16string& name, const pathfinder::VersionRange& range);

inline std::u16string keyOf(const CatalogueMetamodel& metamodel) {
  return keyOf(metamodel.descriptor.name, metamodel.descriptor.version);
}

/// The same for each name, version and version that a hop leads from and to.
std::u16string keyOf(const pathfinder::Hop& hop);

}  // namespace tarn::evolution::catalogue
