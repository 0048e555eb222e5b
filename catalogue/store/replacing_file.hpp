#pragma once

#include <filesystem>

namespace tarn::evolution::catalogue {

/// A file that is written beside another one, its target, and takes the target's place when it is
/// complete: whatever happens meanwhile, the target is the old file or the new one.
///
/// Its name is the target's between "." and ".partial". While it is being written no other process
/// can do the same; what a killed one left there is written over.
class ReplacingFile {
 public:
  /// Begins with an empty file. Throws CatalogueError, which names it, when it cannot be made or
  /// somebody else is writing it. A target that is a symbolic link stands for what it leads to.
  explicit ReplacingFile(const std::filesystem::path& target);
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;

  /// Removes the file unless it has taken the target's place.
  ~ReplacingFile();

  const std::filesystem::path& path() const noexcept { return path_; }
  const std::filesystem::path& target() const noexcept { return target_; }

  /// Puts the file, which nobody must have open any more, in the target's place and sees that it
  /// stays there when power fails. Throws CatalogueError when that fails.
  void replaceTarget();

 private:
  bool lock();

  std::filesystem::path target_;
  std::filesystem::path path_;
  int descriptor_ = -1;
  bool isInPlace_ = false;
};

}  // namespace tarn::evolution::catalogue
