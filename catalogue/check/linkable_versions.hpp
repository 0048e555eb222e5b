#pragma once

#include <vector>

#include "catalogue/catalogue.hpp"
#include "catalogue/check/check.hpp"

namespace tarn::evolution::catalogue {

enum class Linkability {
  Linkable,
  Unlinkable,  ///< no baseline holds it
  Undecided,   ///< to decide it takes more work than the limits allow
};

/// Of each metamodel of a sound content, in its order, whether some baseline can hold it.
std::vector<Linkability> linkabilitiesOf(const CatalogueContent& content,
                                         const CheckLimits& limits = {});

}  // namespace tarn::evolution::catalogue
