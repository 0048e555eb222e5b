#pragma once

#include <memory>

#include "platform/instrumentation.hpp"
#include "platform/visibility.hpp"

namespace instrument::in_memory {

/// Told of every event while it is registered. Calls come on the thread of the event, possibly on
/// several at once. An event that runs while the listener is added or removed, or while its handle
/// is enabled or disabled, is told of in part.
class TARN_PLATFORM_API Listener {
 public:
  virtual ~Listener();

  /// What it throws reaches whoever started the event: the event does not run, the listeners told
  /// before are told that it stops, and this one and those after it are told no more of it.
  virtual void started(const Handle& handle, EventId event, TimePoint time) = 0;

  /// Must not throw.
  virtual void stopped(const Handle& handle, EventId event, TimePoint time) noexcept = 0;
};

TARN_PLATFORM_API void addListener(std::shared_ptr<Listener> listener);
TARN_PLATFORM_API void removeListener(const std::shared_ptr<Listener>& listener);

}  // namespace instrument::in_memory
