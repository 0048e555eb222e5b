#pragma once

#include <pthread.h>

#include <cerrno>
#include <system_error>
#include <thread>

namespace tarn::evolution::pathfinder {

/// The POSIX calls that a reader/writer lock is made of. Tests put others in their place.
struct PosixRwlockCalls {
  static int lockShared(pthread_rwlock_t* lock) { return pthread_rwlock_rdlock(lock); }
  static int lockExclusive(pthread_rwlock_t* lock) { return pthread_rwlock_wrlock(lock); }
  static void unlock(pthread_rwlock_t* lock) { pthread_rwlock_unlock(lock); }
};

/// A POSIX reader/writer lock, to be held through std::shared_lock and std::unique_lock.
///
/// A lock that fails, with EDEADLK above all, throws std::system_error with that code; too many
/// readers (EAGAIN) are waited out.
template <class Calls = PosixRwlockCalls>
class ReaderWriterLock {
 public:
  ReaderWriterLock() = default;
  ReaderWriterLock(const ReaderWriterLock&) = delete;
  ReaderWriterLock& operator=(const ReaderWriterLock&) = delete;
  ~ReaderWriterLock() { pthread_rwlock_destroy(&lock_); }

  // The names are those that std::shared_lock and std::unique_lock call.
  void lock_shared() {
    int error = Calls::lockShared(&lock_);
    while (error == EAGAIN) {
      std::this_thread::yield();
      error = Calls::lockShared(&lock_);
    }
    throwOn(error);
  }

  void lock() { throwOn(Calls::lockExclusive(&lock_)); }

  void unlock_shared() { Calls::unlock(&lock_); }
  void unlock() { Calls::unlock(&lock_); }

 private:
  static void throwOn(int error) {
    if (error != 0) throw std::system_error(error, std::generic_category(), "path cache lock");
  }

  pthread_rwlock_t lock_ = PTHREAD_RWLOCK_INITIALIZER;
};

}  // namespace tarn::evolution::pathfinder
