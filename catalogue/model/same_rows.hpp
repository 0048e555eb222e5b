#pragma once

#include <algorithm>

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// Whether two metamodels of one name and version are the same to the path finder, whatever is told
/// of them.
inline bool isSameBesideNotes(const CatalogueMetamodel& left, const CatalogueMetamodel& right) {
  const auto isSame = [](const CatalogueRequirement& one, const CatalogueRequirement& other) {
    return one.needed.name == other.needed.name && one.needed.range == other.needed.range &&
           one.needed.isOptional == other.needed.isOptional;
  };
  return left.equivalent == right.equivalent &&
         left.descriptor.dependencies == right.descriptor.dependencies &&
         std::equal(left.requirements.begin(), left.requirements.end(), right.requirements.begin(),
                    right.requirements.end(), isSame);
}

/// Whether two metamodels of one name and version are the same in all that a catalogue tells.
inline bool isSameRow(const CatalogueMetamodel& left, const CatalogueMetamodel& right) {
  if (!isSameBesideNotes(left, right) || left.note != right.note) return false;
  for (std::size_t i = 0; i < left.descriptor.dependencies.size(); ++i) {
    if (left.noteOfDependency(i) != right.noteOfDependency(i)) return false;
  }
  return std::equal(left.requirements.begin(), left.requirements.end(), right.requirements.begin(),
                    [](const auto& one, const auto& other) { return one.note == other.note; });
}

}  // namespace tarn::evolution::catalogue
