#include "catalogue/store/replacing_file.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "catalogue/file_error.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::filesystem::path resolved(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_symlink(file, error)) return file;
  const auto result = std::filesystem::weakly_canonical(file, error);
  return error ? file : result;
}

std::filesystem::path beside(const std::filesystem::path& file, const char* suffix) {
  std::filesystem::path result = file;
  result += suffix;
  return result;
}

[[noreturn]] void failToWrite(const std::filesystem::path& file, int error) {
  failFor(file, "cannot be written: " + std::generic_category().message(error));
}

bool isSameFile(int descriptor, const std::filesystem::path& file) {
  struct stat opened {};
  struct stat named {};
  return fstat(descriptor, &opened) == 0 && stat(file.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

}  // namespace

ReplacingFile::ReplacingFile(const std::filesystem::path& target)
    : target_(resolved(target)),
      path_(target_.parent_path() / ("." + target_.filename().string() + ".partial")) {
  if (std::filesystem::is_directory(target_)) {
    failFor(target, "is a directory, not a file");
  }
  while (!lock()) close(descriptor_);
  // The files that SQLite keeps beside its own may have been left as well.
  for (const char* suffix : {"-journal", "-wal", "-shm"}) {
    unlink(beside(path_, suffix).c_str());
  }
  struct stat old {};
  if (stat(target_.c_str(), &old) == 0) fchmod(descriptor_, old.st_mode & 0777);
}

/// Opens, locks and empties the file. False when somebody else has meanwhile put what was opened in
/// the target's place, or removed it.
bool ReplacingFile::lock() {
  constexpr int mode = 0666;
  descriptor_ = open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, mode);
  if (descriptor_ < 0) failToWrite(path_, errno);
  if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
    close(descriptor_);
    failFor(path_, "is being written by another program");
  }
  if (!isSameFile(descriptor_, path_)) return false;
  if (ftruncate(descriptor_, 0) != 0) {
    const int error = errno;
    close(descriptor_);
    failToWrite(path_, error);
  }
  return true;
}

ReplacingFile::~ReplacingFile() {
  if (!isInPlace_) {
    for (const char* suffix : {"", "-journal", "-wal", "-shm"}) {
      unlink(beside(path_, suffix).c_str());
    }
  }
  close(descriptor_);
}

void ReplacingFile::replaceTarget() {
  if (fsync(descriptor_) != 0) failToWrite(path_, errno);
  if (rename(path_.c_str(), target_.c_str()) != 0) failToWrite(target_, errno);
  isInPlace_ = true;
  const auto folder = std::filesystem::absolute(target_).parent_path();
  const int folderDescriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folderDescriptor < 0) return;
  fsync(folderDescriptor);  // a file system that cannot do it has nothing to say about it either
  close(folderDescriptor);
}

}  // namespace tarn::evolution::catalogue
