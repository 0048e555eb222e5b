#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace test {

/// What a program asks of the system about a file.
struct FileCall {
  enum class Kind { Open, Close, Make, Read, Write, Truncate, Sync, Rename, Unlink, Lock, Access };

  Kind kind;
  std::string path;             ///< of the file, or of the one that a descriptor is of
  std::string target = {};      ///< of Rename
  int descriptor = -1;          ///< -1 for calls with a path
  std::string_view bytes = {};  ///< of Write
  long offset = 0;              ///< of Write; the size of Truncate
  bool canWrite = false;        ///< of Open and Access
  const void* caller = nullptr;
};

/// Until it ends, sees all that this process, whichever library it is in, asks about the files in
/// a folder. Only one at a time. Works in programs that have file_calls.cpp as a source.
class FileCallWatch {
 public:
  explicit FileCallWatch(const std::filesystem::path& folder);
  FileCallWatch(const FileCallWatch&) = delete;
  FileCallWatch& operator=(const FileCallWatch&) = delete;
  virtual ~FileCallWatch();

  /// Before a call; an error number in place of the call, or 0. The watch's own calls are not seen.
  virtual int before(const FileCall& /*call*/) { return 0; }

  /// After it; `result` is what it gave, and is never a failure's. Descriptors for Open.
  virtual void after(const FileCall& /*call*/, long /*result*/) {}

  /// From now on it sees nothing.
  void end();

  const std::string& watchedFolder() const { return folder_; }

 private:
  const std::string folder_;
};

}  // namespace test
