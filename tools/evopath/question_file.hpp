#pragma once

#include <filesystem>
#include <fstream>

namespace evopath {

/// A file of questions, a line each, open to be read; throws std::runtime_error, naming it, when it
/// cannot be.
std::ifstream openQuestions(const std::filesystem::path& file);

}  // namespace evopath
