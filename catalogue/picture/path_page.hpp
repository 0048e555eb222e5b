#pragma once

#include <string_view>

namespace tarn::evolution::catalogue {

/// The style sheet and the script of the page that shows a path, as they stand in page/.
extern const std::string_view pathPageStyle;
extern const std::string_view pathPageScript;

}  // namespace tarn::evolution::catalogue
