#pragma once

#include <cstddef>

namespace test {

/// Until it ends, has an allocation of this thread fail, or all from that one on. Works in programs
/// that have failing_allocations.cpp as a source, which replaces the allocation functions.
class FailingAllocations {
 public:
  /// `first` are left that succeed.
  FailingAllocations(std::size_t first, bool persists);
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
  ~FailingAllocations() { end(); }

  void end();
  bool hasFailed() const;     ///< also after its end
  std::size_t count() const;  ///< of allocations so far, if none has failed

  /// Whether the allocation that is about to be made is to fail; for other allocators, too.
  static bool failsNow();

 private:
  const std::size_t first_;
};

}  // namespace test
