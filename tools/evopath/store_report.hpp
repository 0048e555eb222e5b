#pragma once

#include <string>

#include "catalogue/store/store_progress.hpp"

namespace evopath {

/// "3 versions of metamodels and 1 hop".
std::string describeCounts(const tarn::evolution::catalogue::StoreCounts& counts);

}  // namespace evopath
