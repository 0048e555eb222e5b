#pragma once

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace tarn::evolution::pathfinder {

/// The calls that a reader/writer lock is made of. Tests put others in their place.
struct PosixRwlockCalls {
  static int lockShared(pthread_rwlock_t* lock) { return pthread_rwlock_rdlock(lock); }
  static int lockExclusive(pthread_rwlock_t* lock) { return pthread_rwlock_wrlock(lock); }
  static void unlock(pthread_rwlock_t* lock) { pthread_rwlock_unlock(lock); }

  /// Waits for a change. Whoever comes here has its place in the line already.
  static void wait(std::condition_variable& change, std::unique_lock<std::mutex>& line) {
    change.wait(line);
  }
};

/// A POSIX reader/writer lock behind a phase-fair gate, to be held through std::shared_lock and
/// std::unique_lock.
///
/// The lock by itself prefers readers: as long as one comes before the last has left, a writer
/// never gets it. So writers draw tickets at the gate, and a reader that finds a ticket out waits
/// there. A writer waits for the writers before it, and for the readers that were let in before it
/// came: for each other thread at most once. When it is done, all readers that wait by then are let
/// in before the next writer; so a reader waits for one writer at most. With no writer about, a
/// reader pays for the gate with one load.
///
/// It is not recursive, neither way. A thread that asks again while it holds the lock exclusively
/// gets std::system_error with EDEADLK; one that holds it shared may wait for itself for ever.
/// Whatever else fails throws std::system_error with its code, but that too many readers hold the
/// lock (EAGAIN) is waited out.
template <class Calls = PosixRwlockCalls>
class ReaderWriterLock {
 public:
  ReaderWriterLock() = default;
  ReaderWriterLock(const ReaderWriterLock&) = delete;
  ReaderWriterLock& operator=(const ReaderWriterLock&) = delete;
  ~ReaderWriterLock() { pthread_rwlock_destroy(&lock_); }

  // The names are those that std::shared_lock and std::unique_lock call.
  void lock_shared() {
    refuseOwner();
    const bool isLetIn = writers_.load(std::memory_order_relaxed) != 0 && waitForOneWriter();
    const int error = tryLockShared();
    if (isLetIn) noteEntered();
    throwOn(error);
  }

  void lock() {
    refuseOwner();
    waitForTurn();
    const int error = Calls::lockExclusive(&lock_);
    if (error != 0) endTurn();
    throwOn(error);
    owner_.store(std::this_thread::get_id(), std::memory_order_relaxed);
  }

  void unlock_shared() { Calls::unlock(&lock_); }

  void unlock() {
    owner_.store(std::thread::id(), std::memory_order_relaxed);
    Calls::unlock(&lock_);
    endTurn();
  }

 private:
  static void throwOn(int error) {
    if (error != 0) throw std::system_error(error, std::generic_category(), "path cache lock");
  }

  /// The gate would have the owner wait for itself, before the lock could tell.
  void refuseOwner() const {
    const bool isOwner = owner_.load(std::memory_order_relaxed) == std::this_thread::get_id();
    throwOn(isOwner ? EDEADLK : 0);
  }

  int tryLockShared() {
    int error = Calls::lockShared(&lock_);
    while (error == EAGAIN) {
      std::this_thread::yield();
      error = Calls::lockShared(&lock_);
    }
    return error;
  }

  /// False when there is no writer after all. Otherwise the next writer waits for `noteEntered`.
  bool waitForOneWriter() {
    std::unique_lock line(line_);
    if (writers_ == 0) return false;
    ++waitingReaders_;
    const std::uint64_t turn = turn_;
    while (turn_ == turn) Calls::wait(change_, line);
    return true;
  }

  void noteEntered() {
    const std::lock_guard line(line_);
    if (--enteringReaders_ == 0) change_.notify_all();
  }

  void waitForTurn() {
    std::unique_lock line(line_);
    const std::uint64_t ticket = turn_ + writers_++;
    while (turn_ != ticket || enteringReaders_ != 0) Calls::wait(change_, line);
  }

  void endTurn() {
    const std::lock_guard line(line_);
    --writers_;
    ++turn_;
    enteringReaders_ = std::exchange(waitingReaders_, 0);
    change_.notify_all();
  }

  pthread_rwlock_t lock_ = PTHREAD_RWLOCK_INITIALIZER;
  std::atomic<std::thread::id> owner_;     // that holds it exclusively
  std::atomic<std::uint64_t> writers_{0};  // that hold the lock or wait for it

  std::mutex line_;  // guards what follows, and changes of writers_
  std::condition_variable change_;
  std::uint64_t turn_ = 0;             // the ticket of the first of the writers
  std::uint64_t waitingReaders_ = 0;   // for that one
  std::uint64_t enteringReaders_ = 0;  // let in by the last one, and not yet there
};

}  // namespace tarn::evolution::pathfinder
