#include "platform/text.hpp"

#include <boost/locale/utf.hpp>
#include <iterator>

namespace fl::i18n {

std::string ustring_to_utf8(const std::u16string& text) {
  namespace utf = boost::locale::utf;
  constexpr utf::code_point replacement = 0xFFFD;
  std::string result;
  result.reserve(text.size());
  for (auto position = text.begin(); position != text.end();) {
    const auto start = position;
    utf::code_point decoded = utf::utf_traits<char16_t>::decode(position, text.end());
    if (decoded == utf::illegal || decoded == utf::incomplete) {
      decoded = replacement;
      position = start + 1;  // decode has also taken the unit after a lone first surrogate
    }
    utf::utf_traits<char>::encode(decoded, std::back_inserter(result));
  }
  return result;
}

}  // namespace fl::i18n
