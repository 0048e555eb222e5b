#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/visibility.hpp"

/// The framework's performance instrumentation: named events that start and stop, and listeners
/// that are told. All operations may be called from any thread.
namespace instrument {

/// One kind of event. Handles live as long as the process.
class Handle {
 public:
  explicit Handle(std::string_view eventName) : name_(eventName) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  const std::string& name() const noexcept { return name_; }
  bool enabled() const noexcept { return enabled_.load(std::memory_order_relaxed); }
  void enable(bool on) noexcept { enabled_.store(on, std::memory_order_relaxed); }

 private:
  std::string name_;
  std::atomic<bool> enabled_{true};
};

enum class EventId : std::uint64_t {};

/// What an event was about: free pairs of name and text.
using ContextSet = std::map<std::string, std::string>;

using TimePoint = std::chrono::steady_clock::time_point;

class TARN_PLATFORM_API Controls {
 public:
  /// The handle of the event of that name; the same object for the same name.
  Handle& getHandle(std::string_view eventName);
};

class TARN_PLATFORM_API Listeners {
 public:
  /// Whether anybody listens.
  bool enabled() const noexcept;

  /// Tells every listener that an event starts, at `time` or now.
  EventId onEventStart(const Handle& handle, const ContextSet& context,
                       std::optional<TimePoint> time);

  /// Tells every listener that the event stops. Never throws.
  void onEventStop(const Handle& handle, const ContextSet& context, EventId event,
                   std::optional<TimePoint> time) noexcept;
};

extern TARN_PLATFORM_API Controls controls;
extern TARN_PLATFORM_API Listeners listeners;

}  // namespace instrument
