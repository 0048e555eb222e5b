// The system's functions by their own names, which every library of the process then calls.
#include "support/file_calls.hpp"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <span>

namespace test {
namespace {

using Kind = FileCall::Kind;

FileCallWatch* installed = nullptr;
thread_local bool isWithin = false;

std::string pathOf(int descriptor) {
  char path[4096];
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  const ssize_t size = readlink(link.c_str(), path, sizeof(path));
  return {path, static_cast<std::size_t>(size > 0 ? size : 0)};
}

bool isSeen() {
  return installed != nullptr && !isWithin;
}

/// The next library's function of that name.
template <class Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int failed(int /*like*/) {
  return -1;
}
ssize_t failed(ssize_t /*like*/) {
  return -1;
}
FILE* failed(FILE* /*like*/) {
  return nullptr;
}
bool hasFailed(long result) {
  return result < 0;
}
bool hasFailed(const FILE* result) {
  return result == nullptr;
}
long shown(long result) {
  return result;
}
long shown(FILE* result) {
  return fileno(result);
}

/// Makes a call, unless the watch has it fail, and tells the watch of it.
template <class Invoke>
auto watched(const FileCall& call, const Invoke& invoke) -> decltype(invoke()) {
  if (!call.path.starts_with(installed->watchedFolder())) return invoke();
  isWithin = true;
  const int error = installed->before(call);
  auto result = failed(decltype(invoke()){});
  errno = error;
  if (error == 0) {
    result = invoke();
    const int number = errno;
    if (!hasFailed(result)) installed->after(call, shown(result));
    errno = number;
  }
  isWithin = false;
  return result;
}

}  // namespace

FileCallWatch::FileCallWatch(const std::filesystem::path& folder) : folder_(folder) {
  installed = this;
}

FileCallWatch::~FileCallWatch() {
  end();
}

void FileCallWatch::end() {
  if (installed == this) installed = nullptr;
}

}  // namespace test

using namespace test;

#pragma GCC visibility push(default)

#define CALLER __builtin_return_address(0)

// A function by its own name: its result, name, parameters, arguments, what stands after them, and
// the call that it is.
#define WATCHED(Result, name, parameters, arguments, specifier, ...)                   \
  extern "C" Result name parameters specifier {                                        \
    static auto* const real = next<Result parameters>(#name);                          \
    if (!isSeen()) return real arguments;                                              \
    return watched(FileCall{__VA_ARGS__}, [&]() -> Result { return real arguments; }); \
  }

#define WATCHED_OPEN(name)                                                               \
  extern "C" int name(const char* path, int flags, ...) {                                \
    va_list arguments;                                                                   \
    va_start(arguments, flags);                                                          \
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;          \
    va_end(arguments);                                                                   \
    static auto* const real = next<int(const char*, int, mode_t)>(#name);                \
    if (!isSeen()) return real(path, flags, mode);                                       \
    const Kind kind = (flags & O_CREAT) != 0 ? Kind::Make : Kind::Open;                  \
    const bool canWrite = (flags & O_ACCMODE) != O_RDONLY;                               \
    return watched({.kind = kind, .path = path, .canWrite = canWrite, .caller = CALLER}, \
                   [&] { return real(path, flags, mode); });                             \
  }
WATCHED_OPEN(open)
WATCHED_OPEN(open64)

extern "C" int openat(int folder, const char* path, int flags, ...) {
  if (*path == '/') return open(path, flags, 0666);
  static auto* const real = next<int(int, const char*, int, mode_t)>("openat");
  return real(folder, path, flags, 0666);
}

WATCHED(FILE*, fopen, (const char* path, const char* mode), (path, mode), , .kind = Kind::Open,
        .path = path, .canWrite = *mode != 'r', .caller = CALLER)
WATCHED(FILE*, fopen64, (const char* path, const char* mode), (path, mode), , .kind = Kind::Open,
        .path = path, .canWrite = *mode != 'r', .caller = CALLER)
WATCHED(int, mknod, (const char* path, mode_t mode, dev_t device), (path, mode, device), noexcept,
        .kind = Kind::Make, .path = path, .canWrite = true)
WATCHED(int, access, (const char* path, int mode), (path, mode), noexcept, .kind = Kind::Access,
        .path = path, .canWrite = (mode & W_OK) != 0)

#define OF_FILE .path = pathOf(file), .descriptor = file
WATCHED(int, close, (int file), (file), , .kind = Kind::Close, OF_FILE, .caller = CALLER)
WATCHED(int, fclose, (FILE * stream), (stream), , .kind = Kind::Close,
        .path = pathOf(fileno(stream)), .descriptor = fileno(stream), .caller = CALLER)
WATCHED(ssize_t, read, (int file, void* to, size_t size), (file, to, size), , .kind = Kind::Read,
        OF_FILE)
WATCHED(ssize_t, pread64, (int file, void* to, size_t size, off64_t at), (file, to, size, at), ,
        .kind = Kind::Read, OF_FILE)
WATCHED(ssize_t, write, (int file, const void* from, size_t size), (file, from, size), ,
        .kind = Kind::Write, OF_FILE, .bytes = {static_cast<const char*>(from), size},
        .offset = lseek(file, 0, SEEK_CUR))
WATCHED(ssize_t, pwrite64, (int file, const void* from, size_t size, off64_t at),
        (file, from, size, at), , .kind = Kind::Write, OF_FILE,
        .bytes = {static_cast<const char*>(from), size}, .offset = at)
WATCHED(int, ftruncate64, (int file, off64_t size), (file, size), noexcept, .kind = Kind::Truncate,
        OF_FILE, .offset = size)
WATCHED(int, flock, (int file, int operation), (file, operation), noexcept, .kind = Kind::Lock,
        OF_FILE)
#undef OF_FILE

WATCHED(int, unlink, (const char* path), (path), noexcept, .kind = Kind::Unlink, .path = path)
WATCHED(int, rename, (const char* from, const char* to), (from, to), noexcept, .kind = Kind::Rename,
        .path = from, .target = to)
WATCHED(int, renameat2,
        (int fromFolder, const char* from, int toFolder, const char* to, unsigned flags),
        (fromFolder, from, toFolder, to, flags), noexcept, .kind = Kind::Rename, .path = from,
        .target = to)

extern "C" ssize_t writev(int file, const iovec* parts, int count) {
  ssize_t all = 0;
  for (const iovec& part : std::span(parts, static_cast<std::size_t>(count))) {
    const ssize_t written = write(file, part.iov_base, part.iov_len);
    if (written < 0) return all > 0 ? all : written;
    all += written;
  }
  return all;
}

// Nothing is brought to the disk, which would take long: no test looks there.
extern "C" int fsync(int file) {
  if (!isSeen()) return 0;
  return watched({.kind = Kind::Sync, .path = pathOf(file), .descriptor = file}, [] { return 0; });
}
extern "C" int fdatasync(int file) {
  return fsync(file);
}

#pragma GCC visibility pop
