#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>
#include <limits>

namespace bench {

/// Runs from its construction on. Over more than some milliseconds, not while this thread has to
/// wait for others that use the processor; what it times waits for nothing else.
class Stopwatch {
 public:
  double seconds() const {
    const std::chrono::duration<double> passed = Clock::now() - begin_;
    return passed < short_ ? passed.count() : std::min(passed.count(), threadSeconds() - ran_);
  }

 private:
  using Clock = std::chrono::steady_clock;

  /// The time that this thread has run for. Takes half a microsecond to ask for, and now and then
  /// lags behind by some more.
  static double threadSeconds() {
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
  }

  static constexpr std::chrono::milliseconds short_{10};

  double ran_ = threadSeconds();
  Clock::time_point begin_ = Clock::now();  // last, so that asking for the other is not in it
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
