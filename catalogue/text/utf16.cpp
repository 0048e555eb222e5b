#include "catalogue/utf16.hpp"

#include <boost/locale/encoding_utf.hpp>
#include <stdexcept>

namespace tarn::evolution::catalogue {

std::u16string toUtf16(std::string_view utf8) {
  namespace conv = boost::locale::conv;
  try {
    return conv::utf_to_utf<char16_t>(utf8.data(), utf8.data() + utf8.size(), conv::stop);
  } catch (const conv::conversion_error&) {
    throw std::invalid_argument("the text is not UTF-8");
  }
}

}  // namespace tarn::evolution::catalogue
