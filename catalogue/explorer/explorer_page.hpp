#pragma once

#include <string_view>

namespace tarn::evolution::catalogue {

/// The style sheet, the body and the script of the explorer, as they stand in page/.
extern const std::string_view explorerStyle;
extern const std::string_view explorerBody;
extern const std::string_view explorerScript;

}  // namespace tarn::evolution::catalogue
