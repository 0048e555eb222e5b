#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>
#include <limits>

namespace bench {

/// Runs from its construction on, but not while this thread has to wait for others that use the
/// processor. What it times waits for nothing else.
class Stopwatch {
 public:
  /// The time that has passed, or that this thread has run for, whichever is less: asking for the
  /// latter takes half a microsecond, which the former leaves out.
  double seconds() const {
    const std::chrono::duration<double> passed = Clock::now() - begin_;
    return std::min(passed.count(), threadSeconds() - threadBegin_);
  }

 private:
  using Clock = std::chrono::steady_clock;

  static double threadSeconds() {
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
  }

  double threadBegin_ = threadSeconds();
  Clock::time_point begin_ = Clock::now();  // last, so that the other one is not in it
};

/// The least of several measured times: what others do on the machine only ever adds to them.
class Fastest {
 public:
  void add(double seconds) { seconds_ = std::min(seconds_, seconds); }
  double seconds() const { return seconds_; }

 private:
  double seconds_ = std::numeric_limits<double>::infinity();
};

/// The seconds that `work()` takes.
template <class Work>
double secondsOf(const Work& work) {
  const Stopwatch stopwatch;
  work();
  return stopwatch.seconds();
}

}  // namespace bench
