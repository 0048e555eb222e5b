#include "number_option.hpp"

#include <charconv>

namespace evopath {

std::optional<std::uint64_t> readNumber(const std::string& text) {
  std::uint64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::uint64_t parseNumber(const std::string& option, const std::string& text) {
  if (const auto number = readNumber(text)) return *number;
  throw CLI::ValidationError(option + " " + text, "must be a whole number, such as 1000");
}

}  // namespace evopath
