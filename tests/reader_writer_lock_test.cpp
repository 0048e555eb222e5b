#include "pathfinder/search/reader_writer_lock.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <random>
#include <shared_mutex>
#include <string>
#include <vector>

#include "support/random_run.hpp"

namespace test {
namespace {

using tarn::evolution::pathfinder::PosixRwlockCalls;
using tarn::evolution::pathfinder::ReaderWriterLock;

/// Lock calls that fail as told, and then succeed.
struct FailingCalls : PosixRwlockCalls {
  static inline std::vector<int> errors;  // of the calls to come, the last one first

  static int lockExclusive(pthread_rwlock_t* /*lock*/) {
    if (errors.empty()) return 0;
    const int error = errors.back();
    errors.pop_back();
    return error;
  }
  static int lockShared(pthread_rwlock_t* lock) { return lockExclusive(lock); }
  static void unlock(pthread_rwlock_t* /*lock*/) {}
};

TEST(ReaderWriterLock, WaitsOutTooManyReadersAndReportsDeadlock) {
  ReaderWriterLock<FailingCalls> lock;
  FailingCalls::errors = {EAGAIN, EAGAIN};
  EXPECT_NO_THROW(lock.lock_shared());
  EXPECT_TRUE(FailingCalls::errors.empty());
  FailingCalls::errors = {EDEADLK, EDEADLK, EAGAIN};
  EXPECT_THROW(lock.lock_shared(), std::system_error);
  try {
    lock.lock();
    FAIL() << "no exception";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::resource_deadlock_would_occur);
  }
  EXPECT_NO_THROW(lock.lock()) << "who failed has left the line";
  ReaderWriterLock<> real;
  const std::unique_lock held(real);
  EXPECT_THROW(real.lock_shared(), std::system_error);
  EXPECT_THROW(real.lock(), std::system_error);
}

/// Counts who is granted the lock, and for everybody who has to wait, how many were meanwhile.
struct WatchedCalls : PosixRwlockCalls {
  static inline std::atomic<int> readers{0};
  static inline std::atomic<int> writers{0};
  static inline std::atomic<int> arrived{0};  // and waiting

  /// What was counted when this thread took its place in the line.
  struct Place {
    int readers;
    int writers;
  };
  static inline thread_local std::optional<Place> place;

  // Whether anybody was granted it too late.
  static inline std::atomic<int> mostReadersBeforeWriter{0};
  static inline std::atomic<int> mostWritersBeforeWriter{0};
  static inline std::atomic<int> mostWritersBeforeReader{0};

  static void arrive() {
    if (place) return;
    place = {readers.fetch_add(0), writers.fetch_add(0)};
    ++arrived;
  }

  static void note(std::atomic<int>& most, int seen) {
    int before = most;
    while (before < seen && !most.compare_exchange_weak(before, seen)) {
    }
  }

  static void wait(std::condition_variable& change, std::unique_lock<std::mutex>& line) {
    arrive();
    PosixRwlockCalls::wait(change, line);
  }

  static int lockShared(pthread_rwlock_t* lock) {
    const int error = PosixRwlockCalls::lockShared(lock);
    if (place) note(mostWritersBeforeReader, writers - place->writers);
    place.reset();
    ++readers;
    return error;
  }

  /// Its turn has come: just those readers are left that were let in before.
  static int lockExclusive(pthread_rwlock_t* lock) {
    arrive();
    note(mostWritersBeforeWriter, writers - place->writers);
    const int readersBefore = readers.fetch_add(0);
    const int error = PosixRwlockCalls::lockExclusive(lock);
    note(mostReadersBeforeWriter, readers - readersBefore);
    place.reset();
    ++writers;
    return error;
  }
};

TEST(ReaderWriterLockConcurrency, NobodyIsPassedByMoreThanItsHeaderSays) {
  constexpr int threadCount = 6;
  const RandomRun run(4000);
  ReaderWriterLock<WatchedCalls> lock;
  int guarded = 0;
  std::atomic<int> writes{0};
  const auto work = [&](unsigned thread) {
    Random random(run.seed() + thread);
    const unsigned writersIn = 1U << (2 * thread);  // some threads write often, others seldom
    for (std::size_t left = run.cases(); left > 0; --left) {
      if (random() % writersIn == 0) {
        const std::unique_lock held(lock);
        ++guarded;
        ++writes;
      } else {
        const std::shared_lock held(lock);
        std::this_thread::yield();  // so that readers overlap
        if (guarded != writes) std::abort();
      }
    }
  };
  std::vector<std::thread> threads;
  for (unsigned thread = 0; thread < threadCount; ++thread) threads.emplace_back(work, thread);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(guarded, writes);
  EXPECT_LT(WatchedCalls::mostReadersBeforeWriter, threadCount);
  EXPECT_LT(WatchedCalls::mostWritersBeforeWriter, threadCount);
  EXPECT_LE(WatchedCalls::mostWritersBeforeReader, 1);
}

TEST(ReaderWriterLockConcurrency, WritersComeInOrderWithTheReadersThatWaitBetween) {
  ReaderWriterLock<WatchedCalls> lock;
  std::mutex noting;
  std::string order;
  const auto note = [&](const char* who) {
    const std::lock_guard guard(noting);
    order += who;
  };
  std::vector<std::thread> threads;
  const auto arrive = [&](const std::function<void()>& come) {
    const int before = WatchedCalls::arrived;
    threads.emplace_back(come);
    while (WatchedCalls::arrived == before) std::this_thread::yield();
  };
  const auto read = [&] {
    const std::shared_lock held(lock);
    note("r");
  };
  const auto write = [&](const char* who) {
    return [&, who] {
      const std::unique_lock held(lock);
      note(who);
    };
  };
  {
    const std::shared_lock held(lock);
    arrive(write("1"));
    arrive(read);
    arrive(write("2"));
    arrive(read);
    arrive(write("3"));
    EXPECT_EQ(order, "");
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(order, "1rr23");
}

}  // namespace
}  // namespace test
