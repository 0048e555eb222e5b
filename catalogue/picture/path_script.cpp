#include "catalogue/picture/path_script.hpp"

#include <algorithm>
#include <map>
#include <ostream>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "catalogue/text/display_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

constexpr std::string_view placeholders[] = {"expensive", "from", "name", "step", "to"};

/// A piece of the line: a text as it stands, or the name of what takes its place.
struct ScriptPiece {
  std::string text;
  bool isPlaceholder;
};

[[noreturn]] void failForTemplate(const std::string& line, const std::string& reason) {
  throw std::invalid_argument("template " + toVisible(line) + ": " + reason);
}

std::vector<ScriptPiece> parseTemplate(const std::string& line) {
  std::vector<ScriptPiece> pieces{{"", false}};
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char character = line[i];
    if (character != '{' && character != '}') {
      pieces.back().text += character;
    } else if (i + 1 < line.size() && line[i + 1] == character) {
      pieces.back().text += line[i++];
    } else {
      const std::size_t end = line.find('}', i);
      if (character == '}' || end == std::string::npos) {
        failForTemplate(line, "a single brace; write two of them for one");
      }
      const std::string word = line.substr(i + 1, end - i - 1);
      if (std::find(std::begin(placeholders), std::end(placeholders), word) ==
          std::end(placeholders)) {
        failForTemplate(line,
                        "{" + toVisible(word) +
                            "} is none of {step}, {name}, {from}, {to} and {expensive}; write "
                            "two braces for one");
      }
      pieces.push_back({word, true});
      pieces.push_back({"", false});
      i = end;
    }
  }
  return pieces;
}

bool isPlain(char character) {
  constexpr std::string_view others = "-_./:@%+=,";
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || others.find(character) != std::string_view::npos;
}

std::string quotedForShell(const std::string& text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), isPlain)) return text;
  std::string quoted = "'";
  for (const char character : text)
    quoted += character == '\'' ? "'\\''" : std::string(1, character);
  return quoted + "'";
}

}  // namespace

void writePathScript(const PathPicture& picture, const std::string& line, std::ostream& out) {
  const std::vector<ScriptPiece> pieces = parseTemplate(line);
  out << "#!/bin/sh\nset -eu\n# Start:\n";
  for (const PathPicture::Lane& lane : picture.lanes) {
    if (!lane.start.empty()) out << "#   " << toVisible(lane.name + " " + lane.start) << "\n";
  }
  for (std::size_t i = 0; i < picture.steps.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    out << "# Step " << number << ", weight " << weightText(picture.steps[i].weight) << "\n";
    for (const PathPicture::Move& move : picture.steps[i].moves) {
      const std::string& name = picture.lanes[move.lane].name;
      if (move.kind == PathPicture::MoveKind::Entering) {
        out << "#   " << toVisible(name + " enters at " + move.to) << "\n";
        continue;
      }
      const std::map<std::string, std::string> values{
          {"step", number},
          {"name", quotedForShell(name)},
          {"from", quotedForShell(move.from)},
          {"to", quotedForShell(move.to)},
          {"expensive", move.kind == PathPicture::MoveKind::Expensive ? "true" : "false"}};
      for (const auto& [text, isPlaceholder] : pieces) {
        out << (isPlaceholder ? values.at(text) : text);
      }
      out << "\n";
    }
  }
}

}  // namespace tarn::evolution::catalogue
