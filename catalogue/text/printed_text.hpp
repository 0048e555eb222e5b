#pragma once

#include <cstddef>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>

#include "platform/text.hpp"

/// Values, names and numbers as they stand in sentences.
namespace tarn::evolution::catalogue {

/// What a value's stream operator writes, its numbers without the grouping that the global locale
/// may ask for.
template <class Value>
std::string textOf(const Value& value) {
  std::ostringstream out;
  out.exceptions(std::ios::badbit);  // rather than to be cut short where memory is
  out.imbue(std::locale::classic());
  out << value;
  return out.str();
}

/// A name between quotation marks.
inline std::string quotedName(std::u16string_view name) {
  return "\"" + fl::i18n::ustring_to_utf8(std::u16string(name)) + "\"";
}

/// "1 step", "2 steps".
inline std::string countedText(std::size_t number, const std::string& noun) {
  return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

}  // namespace tarn::evolution::catalogue
