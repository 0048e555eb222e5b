#pragma once

#include <functional>
#include <string>

#include "platform/visibility.hpp"

namespace foundation::log::in_memory {

/// Sets the enabled levels of the logger named `channel`, now if it exists and otherwise as soon as
/// it is constructed. `flags` is the sum of the severities wanted. May be called from any thread.
TARN_PLATFORM_API void setEnabledLevels(const std::string& channel, unsigned flags);

/// One diagnostic record, as long as the call that shows it lasts.
struct RecordView {
  int severity;
  const std::string& channel;
  const std::string& text;
};

/// Has `show` called with every record of every diagnostic logger, one at a time, until the process
/// ends. Takes the place of an ordinary Boost.Log sink for programs that do not use Boost.Log
/// themselves.
TARN_PLATFORM_API void addRecordSink(std::function<void(const RecordView&)> show);

}  // namespace foundation::log::in_memory
