// An advisory lock by flock(2) on a file that is made for it. Whoever locked it must see to it that
// the file is still the one that has the name: the one before may have removed it meanwhile. What
// is locked belongs to the opening, not to the process, so that threads exclude one another too,
// and closing other descriptors does not matter.
#include "catalogue/store/write_lock.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "catalogue/reading/file_error.hpp"
#include "catalogue/store/file_beside.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// A descriptor, or a negative number with the reason in `errno`. Does not wait at a pipe.
int openOrMake(const std::filesystem::path& file) {
  constexpr int usual = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  for (;;) {
    int descriptor = open(file.c_str(), O_RDWR | usual);
    // Another user's serves as well, but for network file systems, which want one that can write.
    if (descriptor < 0 && (errno == EACCES || errno == EPERM)) {
      descriptor = open(file.c_str(), O_RDONLY | usual);
    }
    if (descriptor >= 0 || errno != ENOENT) return descriptor;
    descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | usual, 0644);
    if (descriptor >= 0)
      fchmod(descriptor, 0644);  // so that others can lock it, if it is left here
    if (descriptor >= 0 || errno != EEXIST) return descriptor;
  }
}

bool hasName(int descriptor, const std::filesystem::path& name) {
  struct stat opened {};
  struct stat named {};
  return fstat(descriptor, &opened) == 0 && lstat(name.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

}  // namespace

WriteLock::WriteLock(const std::filesystem::path& file, const std::filesystem::path& shownAs,
                     const std::function<void()>& whileWaiting)
    : path_(hiddenBeside(file, ".lock")) {
  using namespace std::chrono;
  const auto end = steady_clock::now() + milliseconds(waitingMilliseconds);
  while (!tryLock(shownAs)) {
    if (steady_clock::now() > end) failFor(shownAs, "is being written by another program");
    if (whileWaiting) whileWaiting();
    std::this_thread::sleep_for(milliseconds(5));
  }
}

bool WriteLock::tryLock(const std::filesystem::path& shownAs) {
  descriptor_ = openOrMake(path_);
  if (descriptor_ < 0) failToWrite(shownAs, errno, path_);
  const int error = flock(descriptor_, LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
  if (error == 0 && hasName(descriptor_, path_)) return true;
  close(descriptor_);
  if (error != 0 && error != EWOULDBLOCK && error != EINTR) failToWrite(shownAs, error, path_);
  return false;
}

WriteLock::~WriteLock() {
  if (hasName(descriptor_, path_)) unlink(path_.c_str());
  close(descriptor_);
}

}  // namespace tarn::evolution::catalogue
