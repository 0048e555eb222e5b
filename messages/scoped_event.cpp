#include "messages/scoped_event.hpp"

namespace tarn::evolution::diagnostics {

namespace {
bool isListenedTo(const instrument::Handle& handle) {
  return instrument::listeners.enabled() && handle.enabled();
}
}  // namespace

ScopedEvent::ScopedEvent(const instrument::Handle& handle) : handle_(handle) {
  if (isListenedTo(handle_)) {
    started_ = instrument::listeners.onEventStart(handle_, {}, std::nullopt);
  }
}

ScopedEvent::~ScopedEvent() {
  if (started_ && isListenedTo(handle_)) {
    instrument::listeners.onEventStop(handle_, {}, *started_, std::nullopt);
  }
}

}  // namespace tarn::evolution::diagnostics
