#pragma once

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// Whether two metamodels of one name and version are the same in all that a catalogue tells.
inline bool isSameRow(const CatalogueMetamodel& left, const CatalogueMetamodel& right) {
  if (left.descriptor.dependencies != right.descriptor.dependencies) return false;
  for (std::size_t i = 0; i < left.descriptor.dependencies.size(); ++i) {
    if (left.noteOfDependency(i) != right.noteOfDependency(i)) return false;
  }
  return left.equivalent == right.equivalent && left.note == right.note;
}

}  // namespace tarn::evolution::catalogue
