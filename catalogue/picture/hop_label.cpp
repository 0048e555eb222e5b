#include "catalogue/picture/hop_label.hpp"

#include "catalogue/picture/markup.hpp"
#include "catalogue/text/display_text.hpp"
#include "catalogue/text/note_lines.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// In units of the font size.
constexpr double longestNote = 30;

}  // namespace

std::string hopLabel(bool isExpensive, const std::vector<std::string>& notes) {
  std::string label = isExpensive ? "expensive" : "";
  const std::string note = shortNote(notes);
  if (!note.empty()) label.append(label.empty() ? "" : ": ").append(note);
  return label;
}

std::string mermaidLabel(const std::string& label) {
  if (label.empty()) return "";
  const bool isWord = label.find_first_not_of("abcdefghijklmnopqrstuvwxyz") == std::string::npos;
  return "|" + (isWord ? label : quoteMermaid(label)) + "|";
}

std::string shortNote(const std::vector<std::string>& notes) {
  std::string text;
  for (const std::string& note : notes)
    text.append(text.empty() ? "" : "; ").append(inOneLine(note));
  return shortenTo(longestNote, toVisible(text));
}

}  // namespace tarn::evolution::catalogue
