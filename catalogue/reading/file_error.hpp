#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include "catalogue/catalogue_error.hpp"

namespace tarn::evolution::catalogue {

/// Throws CatalogueError for what is wrong with a file as a whole.
[[noreturn]] inline void failFor(const std::filesystem::path& file, const std::string& reason) {
  throw CatalogueError("", reason).inFile(file.string());
}

/// The same for a file that cannot be written: `error` is what `errno` was, and `part`, if given,
/// the file beside it that this was about.
[[noreturn]] inline void failToWrite(const std::filesystem::path& file, int error,
                                     const std::filesystem::path& part = {}) {
  failFor(file, "cannot be written: " + (part.empty() ? "" : part.string() + ": ") +
                    std::generic_category().message(error));
}

}  // namespace tarn::evolution::catalogue
