#include "catalogue/import/source_files.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "catalogue/reading/file_error.hpp"

namespace tarn::evolution::catalogue {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t bufferSize = 1 << 16;

bool isHidden(const fs::path& path) {
  return path.filename().string().starts_with('.');
}

/// A link to a file that is missing, which whoever opens it tells.
bool isDangling(const fs::directory_entry& entry) {
  return entry.is_symlink() && !entry.exists();
}

std::vector<fs::path> filesBelow(const fs::path& folder, const std::vector<std::string>& endings) {
  std::vector<fs::path> files;
  fs::recursive_directory_iterator entry(folder);
  for (const fs::recursive_directory_iterator end; entry != end; ++entry) {
    if (isHidden(entry->path())) {
      if (entry->is_directory()) entry.disable_recursion_pending();
    } else if ((entry->is_regular_file() || isDangling(*entry)) &&
               std::find(endings.begin(), endings.end(), entry->path().extension().string()) !=
                   endings.end()) {
      files.push_back(entry->path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string listedEndings(const std::vector<std::string>& endings) {
  std::string text;
  for (const std::string& ending : endings) text += (text.empty() ? "" : ", ") + ending;
  return text;
}

}  // namespace

std::vector<fs::path> filesOf(const fs::path& source, const std::vector<std::string>& endings) {
  std::error_code error;
  if (!fs::is_directory(source, error)) return {source};
  std::vector<fs::path> files;
  try {
    files = filesBelow(source, endings);
  } catch (const fs::filesystem_error& failure) {
    failFor(source, "cannot be read: " + failure.code().message());
  }
  if (files.empty()) failFor(source, "holds no file that ends in " + listedEndings(endings));
  return files;
}

SourceFile::SourceFile(const fs::path& file, Advance advance)
    : name_(std::make_shared<const std::string>(file.string())),
      in_(file, std::ios::binary),
      advance_(std::move(advance)),
      buffer_(bufferSize) {
  std::error_code ignored;
  if (fs::is_directory(file, ignored)) failFor(file, "is a directory, not a file");
  if (!in_) failFor(file, "cannot be opened: " + std::generic_category().message(errno));
}

bool SourceFile::fill() {
  in_.read(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  if (in_.bad()) failFor(*name_, "cannot be read: " + std::generic_category().message(errno));
  const auto count = static_cast<std::size_t>(in_.gcount());
  next_ = buffer_.data();
  end_ = next_ + count;
  if (advance_) advance_(count);
  return count > 0;
}

std::size_t SourceFile::read(char* buffer, std::size_t size) {
  std::size_t count = 0;
  for (; count < size && peek() != EOF; ++count) {
    buffer[count] = *next_;
    skip();
  }
  return count;
}

}  // namespace tarn::evolution::catalogue
