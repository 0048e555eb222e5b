#pragma once

#include <string>
#include <vector>

#include "command_line.hpp"

namespace evopath::manual {

/// The words with the separator between them.
std::string join(const std::vector<std::string>& words, const std::string& separator);

/// A text with each of `special` behind a backslash.
std::string escapeEach(const std::string& text, const std::string& special);

/// A text between the single quotes of a POSIX shell.
std::string quoteForShell(const std::string& text);

/// The names of the commands.
std::vector<std::string> namesOf(const std::vector<Command>& commands);

/// All names of all parameters.
std::vector<std::string> namesOf(const std::vector<Parameter>& parameters);

}  // namespace evopath::manual
