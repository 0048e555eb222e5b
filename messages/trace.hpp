#pragma once

#include <locale>
#include <ostream>

#include "platform/diagnostic_logger.hpp"

/// Tracing of the path finder's reasoning on the one diagnostic logger
/// "tarn::evolution::pathfinder".
namespace tarn::evolution::diagnostics {

/// Severities in use; each is also the value of its flag among the logger's enabled levels.
enum class TraceLevel : unsigned {
  Reasoning = 4,   ///< hop collection, step generation and path search
  CacheStore = 8,  ///< what enters the path cache
};

/// Constructed when the library is loaded, destroyed when it is unloaded, at the latest
/// at process exit.
extern foundation::log::basic_diagnostic_logger<char> logger;

/// Whether records of the level are written, unless a sink refuses them.
inline bool isTraced(TraceLevel level) noexcept {
  return (logger.enabledLevels() & static_cast<unsigned>(level)) != 0;
}

/// Writes one record whose text `writeText(std::ostream&)` forms, its numbers in no locale's way.
///
/// When the level is off this costs one load and one bit test and `writeText` is not called. When
/// it throws, the record is dropped and the exception goes on to the caller.
template <class WriteText>
void trace(TraceLevel level, const WriteText& writeText) {
  if (!isTraced(level)) [[likely]]
    return;
  if (auto record = logger.openRecord(static_cast<unsigned>(level))) {
    record.stream().imbue(std::locale::classic());
    writeText(record.stream());
    record.push();
  }
}

/// Writes one record at `TraceLevel::Reasoning` that holds only `value` as its stream operator
/// prints it.
template <class Value>
void traceValue(const Value& value) {
  trace(TraceLevel::Reasoning, [&](std::ostream& out) { out << value; });
}

}  // namespace tarn::evolution::diagnostics
