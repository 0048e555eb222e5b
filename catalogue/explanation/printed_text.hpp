#pragma once

#include <cstddef>
#include <sstream>
#include <string>

namespace tarn::evolution::catalogue {

/// What a value's stream operator writes.
template <class Value>
std::string textOf(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

/// "1 step", "2 steps".
inline std::string countedText(std::size_t number, const std::string& noun) {
  return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

}  // namespace tarn::evolution::catalogue
