#pragma once

#include <filesystem>
#include <string>

/// Writing a whole text. What fails throws std::runtime_error, which names where.
namespace evopath {

void writeToStandardOutput(const std::string& text);

/// To what is open; errors say that it is `where`.
void writeToDescriptor(int descriptor, const std::string& text, const std::string& where);

/// Throws that something cannot be written.
[[noreturn]] void failToWrite(const std::string& where, int error);

/// The file then holds all of the text, or is left as it was; permissions stay, and a symbolic link
/// stands for what it leads to. A device is written to as it is.
void writeToFile(const std::filesystem::path& file, const std::string& text);

}  // namespace evopath
