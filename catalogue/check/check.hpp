#pragma once

#include <cstdint>
#include <vector>

#include "catalogue/check/catalogue_draft.hpp"
#include "catalogue/check/finding.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// How much work a check may do to decide which versions can be linked, a question that can take
/// time exponential in the number of names. One unit is one requirement looked at.
struct CheckLimits {
  std::uint64_t linkWork = 40'000'000;
};

/// Everything that is found in a catalogue, in the order of the file; what reading it found is part
/// of it. There is an error among the findings exactly when loading refuses the catalogue. (A
/// store, which is not read as a whole when it is opened, has errors where importing the same
/// content would be refused.)
///
/// Takes time and memory nearly linear in versions, dependencies and hops, but for the work that
/// `limits` bounds. Throws nothing but std::bad_alloc.
TARN_EVOLUTION_CATALOGUE_EXPORT std::vector<Finding> check(const CatalogueDraft& draft,
                                                           const CheckLimits& limits = {});

}  // namespace tarn::evolution::catalogue
