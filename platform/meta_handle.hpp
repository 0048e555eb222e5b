#pragma once

#include <atomic>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "platform/requirements.hpp"

namespace tarn::meta {

/// Base of every implementation object of the meta type system: an intrusive reference count.
///
/// A new object has no reference; the first handle made from it adds one. The object deletes itself
/// when the last handle lets go. Counting is safe from any number of threads at once.
class RefCounted {
 public:
  RefCounted() = default;
  RefCounted(const RefCounted&) = delete;
  RefCounted& operator=(const RefCounted&) = delete;

  void addRef() const noexcept { count_.fetch_add(1, std::memory_order_relaxed); }

  void removeRef() const noexcept {
    if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

  /// The number of references held at this moment; for tests and diagnosis.
  std::size_t refCount() const noexcept { return count_.load(std::memory_order_relaxed); }

 protected:
  virtual ~RefCounted() = default;

 private:
  mutable std::atomic<std::size_t> count_{0};
};

/// A value that owns one reference to an implementation object, or is empty.
///
/// Copying adds a reference, destroying or overwriting removes one, moving takes it over and leaves
/// the source empty. Two handles are equal when they denote the same object.
template <class ImplType>
class Handle {
 public:
  using Impl = ImplType;

  Handle() noexcept = default;
  explicit Handle(Impl* impl) noexcept : impl_(impl) { addRef(); }
  Handle(const Handle& other) noexcept : impl_(other.impl_) { addRef(); }
  Handle(Handle&& other) noexcept : impl_(std::exchange(other.impl_, nullptr)) {}
  ~Handle() { removeRef(); }  // NOLINT(clang-analyzer-cplusplus.NewDelete): it does not count along

  Handle& operator=(Handle other) noexcept {
    std::swap(impl_, other.impl_);
    return *this;
  }

  /// Whether it is not empty. Converts to bool and to nothing that a bool converts to, so that
  /// handles of different kinds cannot be compared as if they were numbers.
  template <class Bool>
  requires std::is_same_v<Bool, bool>
  operator Bool() const noexcept {
    return impl_ != nullptr;  // NOLINT(clang-analyzer-cplusplus.NewDelete): as in the destructor
  }

  bool operator==(const Handle&) const noexcept = default;

  /// The implementation object; null when the handle is empty.
  Impl* impl() const noexcept { return impl_; }
  Impl* operator->() const noexcept { return impl_; }

  /// Adds a reference to the object, or does nothing when empty. Whoever calls this by hand owes
  /// one `removeRef()`.
  void addRef() const noexcept {
    if (impl_ != nullptr) impl_->addRef();
  }

  /// Removes a reference from the object, or does nothing when empty.
  void removeRef() const noexcept {
    if (impl_ != nullptr) impl_->removeRef();  // NOLINT(clang-analyzer-cplusplus.NewDelete)
  }

 private:
  Impl* impl_ = nullptr;
};

}  // namespace tarn::meta
