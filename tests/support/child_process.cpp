#include "support/child_process.hpp"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>

// In builds that measure coverage.
extern "C" __attribute__((weak)) int __llvm_profile_write_file();  // NOLINT: the runtime's name

namespace test {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;  // and may need any address
#elif defined(__has_feature)
constexpr bool isSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool isSanitized = false;
#endif
#ifdef NDEBUG
constexpr rlim_t slowness = isSanitized ? 10 : 1;
#else
constexpr rlim_t slowness = 10;
#endif

void limit(decltype(RLIMIT_CPU) resource, rlim_t most) {
  const rlimit limits{most, RLIM_INFINITY};
  setrlimit(resource, &limits);
}

[[noreturn]] void workInChild(const std::function<std::string()>& work, unsigned seconds, int out) {
  limit(RLIMIT_CORE, 0);
  limit(RLIMIT_CPU, slowness * seconds);
  if (!isSanitized) limit(RLIMIT_AS, rlim_t{1} << 30);
  const std::string answer = work();
  for (std::size_t written = 0; written < answer.size();) {
    const ssize_t count = write(out, answer.data() + written, answer.size() - written);
    if (count <= 0) _exit(1);
    written += static_cast<std::size_t>(count);
  }
  if (__llvm_profile_write_file != nullptr) __llvm_profile_write_file();
  _exit(0);
}

}  // namespace

std::string answerOfChild(const std::function<std::string()>& work, unsigned seconds) {
  int ends[2];
  if (pipe(ends) != 0) return "no pipe";
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    workInChild(work, seconds, ends[1]);
  }
  close(ends[1]);
  std::string answer;
  char buffer[4096];
  for (ssize_t count = 0; (count = read(ends[0], buffer, sizeof buffer)) > 0;) {
    answer.append(buffer, static_cast<std::size_t>(count));
  }
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFSIGNALED(status)) return std::string("ended by ") + strsignal(WTERMSIG(status));
  return WEXITSTATUS(status) == 0 ? answer : "ended by itself";
}

}  // namespace test
