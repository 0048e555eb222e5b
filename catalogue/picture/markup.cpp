#include "catalogue/picture/markup.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "catalogue/text/display_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// What stands for a character of a language that would mean something there.
struct Escape {
  char character;
  std::string_view instead;
};

constexpr Escape xmlEscapes[] = {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}};

/// Labels are read with HTML entities.
constexpr Escape dotEscapes[] = {{'"', "\\\""}, {'\\', "\\\\"}, {'&', "&amp;"}};

/// Mermaid reads labels as Markdown and HTML; only letters, digits and quiet signs stay.
constexpr Escape mermaidEscapes[] = {{'"', "#quot;"}, {'#', "#35;"}, {'&', "#38;"}, {'<', "#lt;"},
                                     {'>', "#gt;"},   {'*', "#42;"}, {'`', "#96;"}, {'_', "#95;"},
                                     {'\\', "#92;"},  {';', "#59;"}};

template <std::size_t count>
std::string escape(std::string_view utf8, const Escape (&escapes)[count]) {
  std::string result;
  for (const char character : toVisible(utf8)) {
    const Escape* found =
        std::find_if(std::begin(escapes), std::end(escapes),
                     [&](const Escape& each) { return each.character == character; });
    if (found == std::end(escapes)) {
      result += character;
    } else {
      result += found->instead;
    }
  }
  return result;
}

}  // namespace

std::string escapeXml(std::string_view utf8) {
  return escape(utf8, xmlEscapes);
}

std::string quoteDot(std::string_view utf8) {
  return "\"" + escape(utf8, dotEscapes) + "\"";
}

std::string quoteMermaid(std::string_view utf8) {
  return "\"" + escape(utf8, mermaidEscapes) + "\"";
}

std::string pageBegin(const std::string& title, std::string_view style) {
  std::string result =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      R"(<meta http-equiv="Content-Security-Policy" content="default-src 'none'; )"
      "style-src 'unsafe-inline'; script-src 'unsafe-inline'; img-src data:\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<link rel=\"icon\" href=\"data:,\">\n<title>";
  result += title;
  result += "</title>\n<style>\n";
  result += style;
  return result + "</style>\n</head>\n<body>\n";
}

}  // namespace tarn::evolution::catalogue
