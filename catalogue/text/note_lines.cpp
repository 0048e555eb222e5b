#include "catalogue/text/note_lines.hpp"

#include <algorithm>

namespace tarn::evolution::catalogue {

namespace {

constexpr std::string_view blanks = " \t\r";

}  // namespace

std::vector<std::string> linesOf(std::string_view note) {
  std::vector<std::string> lines;
  while (!note.empty()) {
    const std::size_t end = std::min(note.find('\n'), note.size());
    const std::string_view line = note.substr(0, end);
    const std::size_t first = line.find_first_not_of(blanks);
    if (first != std::string_view::npos) {
      lines.emplace_back(line.substr(first, line.find_last_not_of(blanks) + 1 - first));
    }
    note.remove_prefix(std::min(end + 1, note.size()));
  }
  return lines;
}

std::string inOneLine(std::string_view note) {
  std::string text;
  for (const std::string& line : linesOf(note)) text.append(text.empty() ? "" : " ").append(line);
  return text;
}

}  // namespace tarn::evolution::catalogue
