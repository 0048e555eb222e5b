#include <mutex>
#include <ostream>

#include "platform/diagnostic_logger.hpp"
#include "platform/instrumentation.hpp"

// This host listens to no events and keeps no log.
namespace instrument {

Controls controls;
Listeners listeners;

Handle& Controls::getHandle(std::string_view eventName) {
  static std::mutex mutex;
  static std::map<std::string, Handle, std::less<>> handles;
  const std::lock_guard lock(mutex);
  return handles.try_emplace(std::string(eventName), eventName).first->second;
}

bool Listeners::enabled() const noexcept {
  return false;
}

EventId Listeners::onEventStart(const Handle&, const ContextSet&, std::optional<TimePoint>) {
  return {};
}

void Listeners::onEventStop(const Handle&, const ContextSet&, EventId,
                            std::optional<TimePoint>) noexcept {}

}  // namespace instrument

namespace foundation::log {

template <class CharT>
class basic_diagnostic_logger<CharT>::Source {};

template <class CharT>
struct basic_diagnostic_logger<CharT>::Record::Draft {
  std::basic_ostream<CharT> stream{nullptr};
};

template <class CharT>
basic_diagnostic_logger<CharT>::basic_diagnostic_logger(const std::basic_string<CharT>&) {}

template <class CharT>
basic_diagnostic_logger<CharT>::~basic_diagnostic_logger() = default;

template <class CharT>
typename basic_diagnostic_logger<CharT>::Record basic_diagnostic_logger<CharT>::openRecord(
    unsigned) {
  return {};
}

template <class CharT>
basic_diagnostic_logger<CharT>::Record::Record() noexcept = default;

template <class CharT>
basic_diagnostic_logger<CharT>::Record::Record(std::unique_ptr<Draft> draft) noexcept
    : draft_(std::move(draft)) {}

template <class CharT>
basic_diagnostic_logger<CharT>::Record::Record(Record&&) noexcept = default;

template <class CharT>
typename basic_diagnostic_logger<CharT>::Record& basic_diagnostic_logger<CharT>::Record::operator=(
    Record&&) noexcept = default;

template <class CharT>
basic_diagnostic_logger<CharT>::Record::~Record() = default;

template <class CharT>
std::basic_ostream<CharT>& basic_diagnostic_logger<CharT>::Record::stream() {
  return draft_->stream;
}

template <class CharT>
void basic_diagnostic_logger<CharT>::Record::push() {
  draft_.reset();
}

template class basic_diagnostic_logger<char>;

}  // namespace foundation::log
