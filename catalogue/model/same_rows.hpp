#pragma once

#include <algorithm>

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// Whether two metamodels of one name and version are the same in all that a catalogue tells.
inline bool isSameRow(const CatalogueMetamodel& left, const CatalogueMetamodel& right) {
  if (left.descriptor.dependencies != right.descriptor.dependencies) return false;
  for (std::size_t i = 0; i < left.descriptor.dependencies.size(); ++i) {
    if (left.noteOfDependency(i) != right.noteOfDependency(i)) return false;
  }
  const auto isSame = [](const CatalogueRequirement& one, const CatalogueRequirement& other) {
    return one.needed.name == other.needed.name && one.needed.range == other.needed.range &&
           one.needed.isOptional == other.needed.isOptional && one.note == other.note;
  };
  return left.equivalent == right.equivalent && left.note == right.note &&
         std::equal(left.requirements.begin(), left.requirements.end(), right.requirements.begin(),
                    right.requirements.end(), isSame);
}

}  // namespace tarn::evolution::catalogue
