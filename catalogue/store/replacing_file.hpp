#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <optional>

#include "catalogue/store/write_lock.hpp"

namespace tarn::evolution::catalogue {

/// A file that is written beside another one, its target, and takes the target's place when it is
/// complete: whatever happens meanwhile, the target is the old file or the new one.
///
/// Its name is the target's between "." and ".partial". Nobody else writes either of them
/// meanwhile, for it holds their WriteLock; what a killed process left under its name is removed.
/// It has the target's permissions from the beginning, and its owner and group as far as the system
/// lets that be done.
class ReplacingFile {
 public:
  enum class Kind {
    Plain,
    Database,  ///< no descriptor of it is opened here
  };

  /// Begins with an empty file. Waits for who writes the target; `whileWaiting` is as for
  /// `WriteLock`. Throws CatalogueError, which names the target, when the file cannot be made. A
  /// target that is a symbolic link stands for what it leads to.
  ReplacingFile(const std::filesystem::path& target, Kind kind,
                const std::function<void()>& whileWaiting = {});
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;

  /// Removes the file unless it has taken the target's place.
  ~ReplacingFile();

  /// Where the target would be, behind symbolic links. Throws CatalogueError, which names it, when
  /// no file can take its place: what stands there is no regular file, or there is no folder.
  static std::filesystem::path resolve(const std::filesystem::path& target);

  /// Where the file and its target are, behind symbolic links.
  const std::filesystem::path& path() const noexcept { return path_; }
  const std::filesystem::path& target() const noexcept { return target_; }

  /// Whether something stood in the target's place at the beginning.
  bool replaces() const noexcept { return replaces_; }

  /// Puts the file, which nobody must have open any more, in the target's place and sees that it
  /// stays there when power fails; the content of a database must be safe from that before.
  /// What SQLite left beside the target of a database goes first. Throws CatalogueError when that
  /// fails, and when there was no target but has come to be one.
  void replaceTarget();

 private:
  /// The names of what SQLite keeps beside a database.
  using Beside = std::array<std::filesystem::path, 3>;

  static Beside allBeside(const std::filesystem::path& file);
  void make();
  void removePartial() noexcept;
  void removeBesideTarget();
  void move();

  std::filesystem::path given_;
  Kind kind_;
  std::filesystem::path target_;
  std::filesystem::path path_;
  Beside besidePath_;
  WriteLock lock_;
  bool replaces_ = false;
  bool isInPlace_ = false;
};

}  // namespace tarn::evolution::catalogue
