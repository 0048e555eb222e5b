#include "shell_text.hpp"

namespace evopath::manual {

std::string join(const std::vector<std::string>& words, const std::string& separator) {
  std::string joined;
  for (const std::string& word : words) {
    if (!joined.empty()) joined += separator;
    joined += word;
  }
  return joined;
}

std::string escapeEach(const std::string& text, const std::string& special) {
  std::string escaped;
  for (const char character : text) {
    if (special.find(character) != std::string::npos) escaped += '\\';
    escaped += character;
  }
  return escaped;
}

std::string quoteForShell(const std::string& text) {
  std::string quoted = "'";
  for (const char character : text) {
    if (character == '\'') {
      quoted += "'\\''";
    } else {
      quoted += character;
    }
  }
  return quoted + "'";
}

std::vector<std::string> namesOf(const std::vector<Command>& commands) {
  std::vector<std::string> names;
  names.reserve(commands.size());
  for (const Command& command : commands) names.push_back(command.name);
  return names;
}

std::vector<std::string> namesOf(const std::vector<Parameter>& parameters) {
  std::vector<std::string> names;
  for (const Parameter& parameter : parameters) {
    names.insert(names.end(), parameter.names.begin(), parameter.names.end());
  }
  return names;
}

}  // namespace evopath::manual
