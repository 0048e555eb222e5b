#pragma once

#include <filesystem>
#include <string>

/// Writing a whole text. What fails throws std::runtime_error, which names where.
namespace evopath {

void writeToStandardOutput(const std::string& text);

/// The file then holds all of the text, or is left as it was; permissions stay, and a symbolic link
/// stands for what it leads to. A device is written to as it is.
void writeToFile(const std::filesystem::path& file, const std::string& text);

}  // namespace evopath
