#include "catalogue/reading/json_file.hpp"

#include <array>
#include <cerrno>
#include <fstream>
#include <string_view>
#include <system_error>

#include "catalogue/reading/sqlite_header.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// A file that is read once. Its beginning can be looked at before anything is read.
class ReadOnceBuffer : public std::streambuf {
 public:
  explicit ReadOnceBuffer(std::filebuf& file) : file_(file) {}

  std::string_view beginning() {
    fill();
    return {gptr(), static_cast<std::size_t>(egptr() - gptr())};
  }

 protected:
  int_type underflow() override {
    fill();
    return gptr() == egptr() ? traits_type::eof() : traits_type::to_int_type(*gptr());
  }

 private:
  void fill() {
    const auto size = static_cast<std::streamsize>(bytes_.size());
    setg(bytes_.data(), bytes_.data(), bytes_.data() + file_.sgetn(bytes_.data(), size));
  }

  std::filebuf& file_;
  std::array<char, 1 << 16> bytes_{};
};

/// A stream with all that it reads from.
class ReadOnceStream : public std::istream {
 public:
  explicit ReadOnceStream(std::filebuf file)
      : std::istream(nullptr), file_(std::move(file)), buffer_(file_) {
    rdbuf(&buffer_);
    exceptions(std::ios::badbit);
  }

  std::string_view beginning() { return buffer_.beginning(); }

 private:
  std::filebuf file_;
  ReadOnceBuffer buffer_;
};

[[noreturn]] void failToOpen() {
  throw CatalogueError("", "cannot be opened: " + std::generic_category().message(errno));
}

std::unique_ptr<std::istream> openReadOnce(const std::filesystem::path& file) {
  std::filebuf opened;
  if (opened.open(file, std::ios::in | std::ios::binary) == nullptr) failToOpen();
  auto in = std::make_unique<ReadOnceStream>(std::move(opened));
  try {
    if (!beginsAsDatabase(in->beginning())) return in;
  } catch (const std::ios_base::failure& failure) {
    failToRead(failure);
  }
  throw CatalogueError("",
                       "is a SQLite database that comes through a pipe; a store is opened by "
                       "the name of its file");
}

}  // namespace

bool isReadOnce(const std::filesystem::path& file) {
  std::error_code ignored;
  const auto status = std::filesystem::status(file, ignored);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
         !std::filesystem::is_directory(status);
}

std::unique_ptr<std::istream> openJsonFile(const std::filesystem::path& file) {
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored)) {
    throw CatalogueError("", "is a directory, not a file");
  }
  if (isReadOnce(file)) return openReadOnce(file);
  if (isDatabase(file)) {
    throw CatalogueError("", "is a SQLite database, not a JSON catalogue");
  }
  auto in = std::make_unique<std::ifstream>(file, std::ios::binary);
  if (!*in) failToOpen();
  in->exceptions(std::ios::badbit);
  return in;
}

void failToRead(const std::ios_base::failure& failure) {
  throw CatalogueError("", "cannot be read: " + failure.code().message());
}

}  // namespace tarn::evolution::catalogue
