#pragma once

#include <string>

#include "platform/visibility.hpp"

namespace fl::i18n {

/// UTF-16 to UTF-8. A lone surrogate becomes U+FFFD.
TARN_PLATFORM_API std::string ustring_to_utf8(const std::u16string& text);

}  // namespace fl::i18n
