#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "catalogue/import/source_value.hpp"

namespace tarn::evolution::catalogue {

/// The files that a source consists of: itself, or those in the folder, at any depth, that have one
/// of the endings (such as ".json"), in the order of their names. Hidden files and folders do not
/// count. Throws CatalogueError when there is nothing there.
std::vector<std::filesystem::path> filesOf(const std::filesystem::path& source,
                                           const std::vector<std::string>& endings);

/// A file that is read once from its beginning to its end, counting lines. Failures are thrown as
/// CatalogueErrors that name it.
class SourceFile {
 public:
  /// Told how many bytes more have been read, now and then.
  using Advance = std::function<void(std::uint64_t bytes)>;

  SourceFile(const std::filesystem::path& file, Advance advance);
  SourceFile(const SourceFile&) = delete;
  SourceFile& operator=(const SourceFile&) = delete;

  /// Reads up to `size` bytes; fewer only at the end.
  std::size_t read(char* buffer, std::size_t size);

  /// The next byte, without reading it; EOF at the end.
  int peek() { return next_ == end_ && !fill() ? EOF : static_cast<unsigned char>(*next_); }

  /// Reads the byte that was seen.
  void skip() {
    if (*next_++ == '\n') ++line_;
  }

  std::size_t line() const noexcept { return line_; }  ///< of the next byte
  const std::shared_ptr<const std::string>& name() const noexcept { return name_; }

  SourcePlace place() const { return {name_, line_}; }
  SourcePlace place(std::size_t line) const { return {name_, line}; }

 private:
  bool fill();

  std::shared_ptr<const std::string> name_;
  std::ifstream in_;
  Advance advance_;
  std::vector<char> buffer_;
  const char* next_ = nullptr;
  const char* end_ = nullptr;
  std::size_t line_ = 1;
};

}  // namespace tarn::evolution::catalogue
