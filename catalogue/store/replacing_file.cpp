#include "catalogue/store/replacing_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "catalogue/reading/file_error.hpp"
#include "catalogue/store/file_beside.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// Gives `file` the owner and group of another one, as far as that is possible, and its
/// permissions. A group that it cannot have leaves no more than everybody's permissions to its own.
bool takeAfter(const std::filesystem::path& file, const struct stat& other) {
  constexpr auto unchanged = static_cast<uid_t>(-1);
  mode_t mode = other.st_mode & 0777;
  if (lchown(file.c_str(), other.st_uid, other.st_gid) != 0 &&
      lchown(file.c_str(), unchanged, other.st_gid) != 0) {
    mode &= ~static_cast<mode_t>(S_IRWXG) | (mode & S_IRWXO) << 3;
  }
  return fchmodat(AT_FDCWD, file.c_str(), mode, AT_SYMLINK_NOFOLLOW) == 0;
}

/// Sees that a file, opened with these flags, stays as it is when power fails; 0, or what went
/// wrong. A folder that cannot be opened, or does not know of this, has nothing to say about it.
int sync(const std::filesystem::path& path, int flags) {
  const int descriptor = open(path.c_str(), O_CLOEXEC | flags);
  if (descriptor < 0) return errno == EACCES && (flags & O_DIRECTORY) != 0 ? 0 : errno;
  const int error = fsync(descriptor) == 0 ? 0 : errno;
  close(descriptor);
  return error == EINVAL ? 0 : error;
}

int syncFolderOf(const std::filesystem::path& file) {
  return sync(file.parent_path(), O_RDONLY | O_DIRECTORY);
}

/// Whether it is the file system that does not know of an operation.
bool isUnknown(int error) {
  return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM;
}

/// Renames a file to one that is not there, in whichever way the file system knows; 0, or what went
/// wrong.
int renameToNew(const char* from, const char* to) {
  if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
  if (!isUnknown(errno)) return errno;
  if (link(from, to) == 0) {
    unlink(from);
    return 0;
  }
  if (!isUnknown(errno)) return errno;
  if (access(to, F_OK) == 0) return EEXIST;
  return rename(from, to) == 0 ? 0 : errno;
}

}  // namespace

std::filesystem::path ReplacingFile::resolve(const std::filesystem::path& given) {
  constexpr int mostLinks = 40;  // as the system has it
  std::error_code error;
  std::filesystem::path file = std::filesystem::absolute(given, error);
  for (int links = 0; links < mostLinks && std::filesystem::is_symlink(file, error); ++links) {
    file = file.parent_path() / std::filesystem::read_symlink(file, error);
  }
  const auto folder = std::filesystem::is_symlink(file, error)
                          ? std::filesystem::canonical(file, error)  // which says what is wrong
                          : std::filesystem::canonical(file.parent_path(), error);
  if (error) failToWrite(given, error.value());
  const auto status = std::filesystem::status(file, error);
  if (!file.has_filename() || std::filesystem::is_directory(status)) {
    failFor(given, "is a directory, not a file");
  }
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    failFor(given, "is no regular file; it is left alone");
  }
  return folder / file.filename();
}

ReplacingFile::ReplacingFile(const std::filesystem::path& target, Kind kind,
                             const std::function<void()>& whileWaiting)
    : given_(target),
      kind_(kind),
      target_(resolve(target)),
      path_(hiddenBeside(target_, ".partial")),
      besidePath_(allBeside(path_)),
      lock_(target_, given_, whileWaiting) {
  removePartial();
  make();
}

ReplacingFile::Beside ReplacingFile::allBeside(const std::filesystem::path& file) {
  return {beside(file, "-journal"), beside(file, "-wal"), beside(file, "-shm")};
}

void ReplacingFile::make() {
  struct stat old {};
  replaces_ = stat(target_.c_str(), &old) == 0;
  // Nobody may read for a moment what is not to be read.
  const mode_t mode = replaces_ ? 0600 : 0666;
  if (mknod(path_.c_str(), S_IFREG | mode, 0) != 0) failToWrite(given_, errno, path_);
  if (!replaces_ || takeAfter(path_, old)) return;
  const int error = errno;
  removePartial();
  failToWrite(given_, error);
}

ReplacingFile::~ReplacingFile() {
  if (!isInPlace_) removePartial();
}

void ReplacingFile::removePartial() noexcept {
  unlink(path_.c_str());
  for (const auto& file : besidePath_) unlink(file.c_str());
}

void ReplacingFile::replaceTarget() {
  if (kind_ == Kind::Database) {
    removeBesideTarget();
  } else if (const int error = sync(path_, O_WRONLY); error != 0) {
    failToWrite(given_, error);
  }
  move();
  isInPlace_ = true;
  if (const int error = syncFolderOf(target_); error != 0) {
    failFor(given_, "has been written, but may be as it was before if power fails: " +
                        std::generic_category().message(error));
  }
}

/// What is left there would be taken for the new file's: that it is gone, also what SQLite itself
/// has removed, must be certain before the new file comes.
void ReplacingFile::removeBesideTarget() {
  for (const auto& file : allBeside(target_)) {
    if (unlink(file.c_str()) != 0 && errno != ENOENT) failToWrite(given_, errno, file);
  }
  if (const int error = syncFolderOf(target_); error != 0) failToWrite(given_, error);
}

void ReplacingFile::move() {
  const int error = replaces_ ? (rename(path_.c_str(), target_.c_str()) == 0 ? 0 : errno)
                              : renameToNew(path_.c_str(), target_.c_str());
  if (error == EEXIST) failFor(given_, "has been made by another program meanwhile");
  if (error != 0) failToWrite(given_, error);
}

}  // namespace tarn::evolution::catalogue
