#include "platform/instrumentation.hpp"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/in_memory/listener.hpp"

namespace instrument {

namespace {

using ListenerList = std::vector<std::shared_ptr<in_memory::Listener>>;

struct State {
  std::mutex mutex;
  std::map<std::string, Handle, std::less<>> handles;
  // Replaced as a whole, so that an event can call its listeners without holding the mutex.
  std::shared_ptr<const ListenerList> listeners = std::make_shared<ListenerList>();
  std::atomic<bool> listening{false};
  std::atomic<std::uint64_t> lastEvent{0};

  std::shared_ptr<const ListenerList> currentListeners() {
    const std::lock_guard lock(mutex);
    return listeners;
  }

  void replaceListeners(const ListenerList& changed) {
    listeners = std::make_shared<ListenerList>(changed);
    listening = !changed.empty();
  }
};

State& state() {
  static State instance;
  return instance;
}

TimePoint orNow(const std::optional<TimePoint>& time) {
  return time ? *time : std::chrono::steady_clock::now();
}

}  // namespace

Controls controls;
Listeners listeners;

Handle& Controls::getHandle(std::string_view eventName) {
  const std::lock_guard lock(state().mutex);
  return state().handles.try_emplace(std::string(eventName), eventName).first->second;
}

bool Listeners::enabled() const noexcept {
  return state().listening;
}

EventId Listeners::onEventStart(const Handle& handle, const ContextSet& /*context*/,
                                std::optional<TimePoint> time) {
  const EventId event{++state().lastEvent};
  const TimePoint start = orNow(time);
  const std::shared_ptr<const ListenerList> told = state().currentListeners();
  auto next = told->begin();
  try {
    for (; next != told->end(); ++next) (*next)->started(handle, event, start);
  } catch (...) {
    std::for_each(told->begin(), next,
                  [&](const auto& listener) { listener->stopped(handle, event, start); });
    throw;
  }
  return event;
}

void Listeners::onEventStop(const Handle& handle, const ContextSet& /*context*/, EventId event,
                            std::optional<TimePoint> time) noexcept {
  const TimePoint stop = orNow(time);
  for (const auto& listener : *state().currentListeners()) listener->stopped(handle, event, stop);
}

in_memory::Listener::~Listener() = default;

void in_memory::addListener(std::shared_ptr<Listener> listener) {
  const std::lock_guard lock(state().mutex);
  ListenerList changed = *state().listeners;
  changed.push_back(std::move(listener));
  state().replaceListeners(changed);
}

void in_memory::removeListener(const std::shared_ptr<Listener>& listener) {
  const std::lock_guard lock(state().mutex);
  ListenerList changed = *state().listeners;
  changed.erase(std::remove(changed.begin(), changed.end(), listener), changed.end());
  state().replaceListeners(changed);
}

}  // namespace instrument
