#include "support/failing_allocations.hpp"

#include <cstdlib>
#include <limits>
#include <new>

namespace test {
namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

thread_local std::size_t left = unlimited;  // allocations that succeed
thread_local bool isPersistent = false;
thread_local bool isMet = false;

}  // namespace

FailingAllocations::FailingAllocations(std::size_t first, bool persists) : first_(first) {
  left = first;
  isPersistent = persists;
  isMet = false;
}

void FailingAllocations::end() {
  left = unlimited;
}

bool FailingAllocations::hasFailed() const {
  return isMet;
}

std::size_t FailingAllocations::count() const {
  return first_ - left;
}

bool FailingAllocations::failsNow() {
  if (left == unlimited) return false;
  if (left > 0) {
    --left;
    return false;
  }
  isMet = true;
  if (!isPersistent) left = unlimited;
  return true;
}

}  // namespace test

namespace {

void* allocate(std::size_t size, std::size_t alignment) {
  if (test::FailingAllocations::failsNow()) throw std::bad_alloc();
  const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
  if (void* memory = std::aligned_alloc(alignment, rounded)) return memory;
  throw std::bad_alloc();
}

}  // namespace

// Where it inlines, g++ takes the pairs below for mismatched.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

void* operator new(std::size_t size) {
  return allocate(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t& /*told by null*/) noexcept try {
  return operator new(size);
} catch (const std::bad_alloc&) {
  return nullptr;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t& /*told by null*/) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  std::free(memory);
}

/// What the solver held when it ran out of memory is never released (see `SatSolver`).
// NOLINTNEXTLINE(bugprone-reserved-identifier): a name of the leak checker's
extern "C" const char* __lsan_default_suppressions() {
  return "leak:CaDiCaL::\nleak:SatSolver::\n";
}
