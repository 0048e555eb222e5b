#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>

namespace evopath {

/// The number that a text is, which has digits only; none for any other text and for a number
/// beyond 64 bits.
std::optional<std::uint64_t> readNumber(const std::string& text);

/// The same for the value of an option. Throws CLI::ValidationError, naming the option
/// and the text, when there is none.
std::uint64_t parseNumber(const std::string& option, const std::string& text);

/// Adds an option that takes a number from 0 on to a command; `value`, which says what holds
/// without it, receives what is given, so it must outlive the parsing.
template <class Number>
CLI::Option* addNumberOption(CLI::App& command, const std::string& name, Number& value,
                             const std::string& description) {
  static_assert(std::is_unsigned_v<Number> && sizeof(Number) == sizeof(std::uint64_t));
  return command
      .add_option_function<std::string>(
          name, [name, &value](const std::string& text) { value = parseNumber(name, text); },
          description)
      ->type_name("NUMBER")
      ->default_str(std::to_string(value));
}

}  // namespace evopath
