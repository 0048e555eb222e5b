#pragma once

#include <optional>

#include "platform/instrumentation.hpp"

namespace tarn::evolution::diagnostics {

/// An instrumentation event that lasts as long as this object: started on construction if anybody
/// listens, stopped on every way out of the scope.
class ScopedEvent {
 public:
  explicit ScopedEvent(const instrument::Handle& handle);
  ~ScopedEvent();
  ScopedEvent(const ScopedEvent&) = delete;
  ScopedEvent& operator=(const ScopedEvent&) = delete;

 private:
  const instrument::Handle& handle_;
  std::optional<instrument::EventId> started_;
};

}  // namespace tarn::evolution::diagnostics
