#include "catalogue/picture/markup.hpp"

#include "catalogue/text/display_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// The visible text with what `replace` gives for each byte that it has something for.
template <class Replace>
std::string replaceBytes(std::string_view utf8, const Replace& replace) {
  std::string result;
  for (const char character : toVisible(utf8)) {
    const std::string_view instead = replace(character);
    if (instead.empty()) {
      result += character;
    } else {
      result += instead;
    }
  }
  return result;
}

std::string_view xmlEntity(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    default:
      return {};
  }
}

std::string_view dotEscape(char character) {
  switch (character) {
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    case '&':
      return "&amp;";  // labels are read with HTML entities
    default:
      return {};
  }
}

/// Mermaid reads labels as Markdown and HTML; only letters, digits and quiet signs stay.
std::string_view mermaidEntity(char character) {
  switch (character) {
    case '"':
      return "#quot;";
    case '#':
      return "#35;";
    case '&':
      return "#38;";
    case '<':
      return "#lt;";
    case '>':
      return "#gt;";
    case '*':
      return "#42;";
    case '`':
      return "#96;";
    case '_':
      return "#95;";
    case '\\':
      return "#92;";
    case ';':
      return "#59;";
    default:
      return {};
  }
}

}  // namespace

std::string escapeXml(std::string_view utf8) {
  return replaceBytes(utf8, xmlEntity);
}

std::string quoteDot(std::string_view utf8) {
  return "\"" + replaceBytes(utf8, dotEscape) + "\"";
}

std::string quoteMermaid(std::string_view utf8) {
  return "\"" + replaceBytes(utf8, mermaidEntity) + "\"";
}

}  // namespace tarn::evolution::catalogue
