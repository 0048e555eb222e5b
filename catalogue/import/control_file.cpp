#include "catalogue/import/control_file.hpp"

#include <algorithm>
#include <string_view>

namespace tarn::evolution::catalogue {

namespace {

constexpr std::string_view blanks = " \t\r\f\v";

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

std::string readLine(SourceFile& file) {
  std::string line;
  for (int next = file.peek(); next != EOF; next = file.peek()) {
    file.skip();
    if (next == '\n') break;
    line += static_cast<char>(next);
  }
  return line;
}

/// What stands between single quotes, in which a quote is doubled or has a backslash before it.
std::string unquoted(std::string_view text, const SourcePlace& place) {
  std::string value;
  for (std::size_t i = 1; i < text.size(); ++i) {
    const bool isQuote = text[i] == '\'';
    const bool isEscape = text[i] == '\\' || (isQuote && text.substr(i + 1).starts_with('\''));
    if (isQuote && !isEscape) {
      const std::string_view rest = trimmed(text.substr(i + 1));
      if (!rest.empty() && rest.front() != '#') place.fail("after the value the line must end");
      return value;
    }
    if (isEscape && ++i == text.size()) break;
    value += text[i];
  }
  place.fail("the quotation does not end");
}

/// Takes a name off a list: what stands between double quotes, or else in lower case.
std::string takeName(std::string_view& list, const SourcePlace& place) {
  std::string name;
  if (list.starts_with('"')) {
    for (std::size_t i = 1; i < list.size(); ++i) {
      if (list[i] != '"') {
        name += list[i];
      } else if (list.substr(i + 1).starts_with('"')) {
        name += list[++i];
      } else {
        list.remove_prefix(i + 1);
        return name;
      }
    }
    place.fail("the quotation does not end");
  }
  const std::string_view word = trimmed(list.substr(0, list.find(',')));
  list.remove_prefix(std::min(list.find(','), list.size()));
  for (const char letter : word) {
    name += letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  }
  return name;
}

std::vector<std::string> namesOf(std::string_view list, const SourcePlace& place) {
  std::vector<std::string> names;
  for (list = trimmed(list); !list.empty();) {
    names.push_back(takeName(list, place));
    if (names.back().empty()) place.fail("there is an empty name in the list");
    list = trimmed(list);
    if (list.empty()) break;
    if (list.front() != ',') place.fail("names must be separated by commas");
    list = trimmed(list.substr(1));
    if (list.empty()) place.fail("there is an empty name in the list");
  }
  return names;
}

}  // namespace

ControlFile readControlFile(SourceFile& file) {
  ControlFile result{false, {}, file.place()};
  while (file.peek() != EOF) {
    const SourcePlace place = file.place();
    const std::string line = readLine(file);
    std::string_view rest = trimmed(line);
    if (rest.empty() || rest.front() == '#') continue;
    const std::size_t end = std::min(rest.find_first_of(" \t="), rest.size());
    const std::string_view key = rest.substr(0, end);
    rest = trimmed(rest.substr(end));
    if (rest.starts_with('=')) rest = trimmed(rest.substr(1));
    if (key.empty() || rest.empty()) place.fail("must be a name, \"=\" and a value");
    const std::string value = rest.front() == '\''
                                  ? unquoted(rest, place)
                                  : std::string(trimmed(rest.substr(0, rest.find('#'))));
    if (key != "requires") continue;
    result = {true, namesOf(value, place), place};
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
