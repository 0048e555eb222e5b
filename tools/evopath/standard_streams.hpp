#pragma once

#include <filesystem>
#include <string>

/// A hyphen in the place of a file stands for standard input or output.
namespace evopath {

inline constexpr const char* standardStream = "-";

/// The file to read for an argument. Throws std::invalid_argument when standard input is asked for
/// a second time, for it can be read only once.
std::filesystem::path inputFile(const std::string& argument);

/// Whether what is written to the file goes to standard output, by a hyphen or by another name such
/// as /dev/stdout.
bool isStandardOutput(const std::filesystem::path& file);

}  // namespace evopath
