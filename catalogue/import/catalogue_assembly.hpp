#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "catalogue/catalogue.hpp"
#include "catalogue/import/foreign_catalogue.hpp"
#include "catalogue/import/import_log.hpp"

namespace tarn::evolution::catalogue {

/// What one group of sources holds, and what goes before its names.
struct ForeignPart {
  std::string prefix;
  ForeignCatalogue catalogue;
};

struct AssembledCatalogue {
  CatalogueContent content;
  std::size_t unordered = 0;  ///< see `ImportReport`
};

/// Makes a sound catalogue of the parts. Of `former`, what is of names that no part has stays as it
/// is, and comes first.
///
/// Faults, each said of its place, are what a catalogue cannot hold: a version that reads as
/// another one of its name, a dependency on an unknown name, on no version that is there, or on one
/// of two that have the same equivalent. An optional dependency needs no version to be there.
/// Ranges are exact: they admit of all versions of the catalogue those that the source means.
AssembledCatalogue assembleCatalogue(const std::vector<ForeignPart>& parts, CatalogueContent former,
                                     ImportLog& log);

}  // namespace tarn::evolution::catalogue
