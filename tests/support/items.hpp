#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace test {

/// What blanks separate in a text.
inline std::vector<std::string> itemsIn(const std::string& text) {
  std::vector<std::string> items;
  std::istringstream in(text);
  for (std::string item; in >> item;) items.push_back(item);
  return items;
}

/// What a separator parts in a text; nothing after the last one.
inline std::vector<std::string> parted(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

/// The items with a blank between them.
inline std::string joined(const std::vector<std::string>& items) {
  std::string text;
  for (const std::string& item : items) text += (text.empty() ? "" : " ") + item;
  return text;
}

}  // namespace test
