#include "catalogue/text/display_text.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <locale>
#include <sstream>

namespace tarn::evolution::catalogue {

namespace {

constexpr utf8proc_int32_t zeroWidthNonJoiner = 0x200C;
constexpr utf8proc_int32_t zeroWidthJoiner = 0x200D;
constexpr utf8proc_int32_t replacement = 0xFFFD;

struct Character {
  utf8proc_int32_t codePoint;
  std::string_view bytes;
};

/// Takes the first character off a text that is not empty.
Character takeCharacter(std::string_view& text) {
  utf8proc_int32_t codePoint = replacement;
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  const auto length =
      utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
  const Character character{length > 0 ? codePoint : replacement,
                            text.substr(0, length > 0 ? static_cast<std::size_t>(length) : 1)};
  text.remove_prefix(character.bytes.size());
  return character;
}

/// Takes off what is read as one character: a letter with its combining marks, a joined emoji.
/// Gives its room as `measure` says of one code point, the widest one counting.
template <class Measure>
std::string_view takeCluster(std::string_view& text, const Measure& measure, double& width) {
  const std::string_view whole = text;
  utf8proc_int32_t state = 0;
  Character character = takeCharacter(text);
  width = measure(character.codePoint);
  while (!text.empty()) {
    std::string_view rest = text;
    const Character next = takeCharacter(rest);
    if (utf8proc_grapheme_break_stateful(character.codePoint, next.codePoint, &state)) break;
    width = std::max(width, measure(next.codePoint));
    character = next;
    text = rest;
  }
  return whole.substr(0, whole.size() - text.size());
}

bool isDisturbing(utf8proc_int32_t codePoint) {
  if (codePoint == zeroWidthJoiner || codePoint == zeroWidthNonJoiner) return false;
  if ((codePoint & 0xFFFE) == 0xFFFE || (codePoint >= 0xFDD0 && codePoint <= 0xFDEF)) return true;
  switch (utf8proc_category(codePoint)) {
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_CF:
    case UTF8PROC_CATEGORY_CS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return true;
    default:
      return false;
  }
}

double columnsOf(utf8proc_int32_t codePoint) {
  return utf8proc_charwidth(codePoint);
}

/// The widest that a character is in the usual fonts, DejaVu Sans and Verdana being the widest.
double widthOf(utf8proc_int32_t codePoint) {
  constexpr std::string_view narrow = " !'(),-./:;I[]`fijlrt|";
  constexpr std::string_view wide = "%@MWm";
  if (codePoint >= 0x80) return utf8proc_charwidth(codePoint) == 2 ? 1.3 : 1.0;
  const char character = static_cast<char>(codePoint);
  if (narrow.find(character) != std::string_view::npos) return 0.42;
  if (wide.find(character) != std::string_view::npos) return 1.01;
  const bool isSmall = (character >= 'a' && character <= 'z' && character != 'w') ||
                       (character >= '0' && character <= '9');
  return isSmall ? 0.65 : 0.85;
}

}  // namespace

std::string toVisible(std::string_view utf8) {
  std::ostringstream out;
  out.exceptions(std::ios::badbit);
  out.imbue(std::locale::classic());
  out << std::hex;
  while (!utf8.empty()) {
    const Character character = takeCharacter(utf8);
    if (isDisturbing(character.codePoint)) {
      out << "\\u{" << character.codePoint << "}";
    } else if (character.codePoint == replacement) {
      out << "\uFFFD";
    } else {
      out << character.bytes;
    }
  }
  return out.str();
}

std::size_t countColumns(std::string_view utf8) {
  double columns = 0;
  while (!utf8.empty()) {
    double width = 0;
    takeCluster(utf8, columnsOf, width);
    columns += width;
  }
  return static_cast<std::size_t>(columns);
}

std::string padTo(std::size_t columns, std::string_view utf8) {
  std::string padded(utf8);
  padded.append(columns - std::min(columns, countColumns(utf8)), ' ');
  return padded;
}

double estimateWidth(std::string_view utf8) {
  double sum = 0;
  while (!utf8.empty()) {
    double width = 0;
    takeCluster(utf8, widthOf, width);
    sum += width;
  }
  return sum;
}

std::string shortenTo(double width, std::string_view utf8) {
  if (estimateWidth(utf8) <= width) return std::string(utf8);
  constexpr double ellipsis = 1.0;
  std::string shortened;
  for (double sum = ellipsis; !utf8.empty();) {
    double next = 0;
    const std::string_view cluster = takeCluster(utf8, widthOf, next);
    sum += next;
    if (sum > width) break;
    shortened += cluster;
  }
  return shortened + "\u2026";
}

}  // namespace tarn::evolution::catalogue
