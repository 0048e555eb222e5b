#pragma once

#include <string>
#include <string_view>

#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// UTF-8 to UTF-16; throws std::invalid_argument when the text is not UTF-8.
TARN_EVOLUTION_CATALOGUE_EXPORT std::u16string toUtf16(std::string_view utf8);

}  // namespace tarn::evolution::catalogue
