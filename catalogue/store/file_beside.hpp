#pragma once

#include <filesystem>

namespace tarn::evolution::catalogue {

/// The file whose name is that of another one with `suffix` after it.
inline std::filesystem::path beside(const std::filesystem::path& file, const char* suffix) {
  std::filesystem::path result = file;
  result += suffix;
  return result;
}

/// The file that is hidden beside another one: "." before its name and `suffix` after it.
inline std::filesystem::path hiddenBeside(const std::filesystem::path& file, const char* suffix) {
  return file.parent_path() / ("." + file.filename().string() + suffix);
}

}  // namespace tarn::evolution::catalogue
