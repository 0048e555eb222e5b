#include "pathfinder/values/error_text.hpp"

#include <cstddef>

#include "platform/text.hpp"

namespace tarn::evolution::pathfinder {

std::string plainText(const SemVer& version) {
  return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
         std::to_string(version.patch);
}

std::string shownText(const std::u16string& text) {
  std::u16string shown = text;
  for (char16_t& unit : shown) {
    if (unit == u'\0') unit = u'\u2400';
  }
  return fl::i18n::ustring_to_utf8(shown);
}

std::string shownText(const VersionId& version) {
  return version.isSemVer() ? plainText(version.getSemVer()) : shownText(version.getText());
}

std::string briefText(const Metamodel& metamodel) {
  constexpr std::size_t longest = 100;
  const auto cut = [](std::string text) {
    if (text.size() <= longest) return text;
    std::size_t end = longest;
    while ((static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;  // within a character
    return text.substr(0, end) + "...";
  };
  return cut(shownText(metamodel.name)) + "@" + cut(shownText(metamodel.version));
}

}  // namespace tarn::evolution::pathfinder
