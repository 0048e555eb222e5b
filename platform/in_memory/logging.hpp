#pragma once

#include <cstdint>
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

/// Stands for a sink that was added. No two of a process are the same.
enum class RecordSinkId : std::uint64_t {};

/// Has `show` called with every record of every diagnostic logger, one at a time, until the sink is
/// removed or the process ends. Takes the place of an ordinary Boost.Log sink for programs that do
/// not use Boost.Log themselves. May be called from any thread.
TARN_PLATFORM_API RecordSinkId addRecordSink(std::function<void(const RecordView&)> show);

/// Removes a sink. When this returns, its function runs no more, is not called again, and is
/// destroyed; unless this is called by that function, which ends first. A sink that is not there
/// any more may be removed again. May be called from any thread.
TARN_PLATFORM_API void removeRecordSink(RecordSinkId sink);

}  // namespace foundation::log::in_memory
