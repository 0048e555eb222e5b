#pragma once

#include <filesystem>
#include <string>

#include "catalogue/catalogue_error.hpp"

namespace tarn::evolution::catalogue {

/// Throws CatalogueError for what is wrong with a file as a whole.
[[noreturn]] inline void failFor(const std::filesystem::path& file, const std::string& reason) {
  throw CatalogueError("", reason).inFile(file.string());
}

}  // namespace tarn::evolution::catalogue
