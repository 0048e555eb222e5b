#pragma once

#include <filesystem>
#include <functional>

namespace tarn::evolution::catalogue {

/// The right to write a file and what lies beside it, which one at a time has among all threads of
/// all processes that ask for it so.
///
/// It is the system's lock of a file beside, whose name is the other's between "." and ".lock",
/// and which is removed in the end. One that a killed process left has no meaning and is used
/// again. A child that `fork` makes meanwhile does not keep it from being released.
class WriteLock {
 public:
  /// How long is waited, here and for SQLite's locks.
  static constexpr int waitingMilliseconds = 5000;

  /// `file` is where the file itself is, behind any symbolic links; errors name it as `shownAs`.
  /// While another one has the lock, calls `whileWaiting`, unless it is empty, again and again;
  /// what that throws ends the waiting. Throws CatalogueError after five seconds, and when the
  /// folder cannot be written.
  WriteLock(const std::filesystem::path& file, const std::filesystem::path& shownAs,
            const std::function<void()>& whileWaiting);
  WriteLock(const WriteLock&) = delete;
  WriteLock& operator=(const WriteLock&) = delete;
  ~WriteLock();

 private:
  bool tryLock(const std::filesystem::path& shownAs);

  std::filesystem::path path_;
  int descriptor_ = -1;
};

}  // namespace tarn::evolution::catalogue
