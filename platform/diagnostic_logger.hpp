#pragma once

#include <atomic>
#include <iosfwd>
#include <memory>
#include <string>

#include "platform/visibility.hpp"

namespace foundation::log {

/// A named source of diagnostic records, each with a severity.
///
/// Every severity has a flag of the same value (4 for severity 4, 8 for severity 8); a caller asks
/// `enabledLevels()` first and opens no record whose flag is not set. All operations may be called
/// from any thread.
template <class CharT>
class basic_diagnostic_logger {
 public:
  class Record;

  explicit basic_diagnostic_logger(const std::basic_string<CharT>& channel);
  ~basic_diagnostic_logger();
  basic_diagnostic_logger(const basic_diagnostic_logger&) = delete;
  basic_diagnostic_logger& operator=(const basic_diagnostic_logger&) = delete;

  unsigned enabledLevels() const noexcept { return enabledLevels_.load(std::memory_order_relaxed); }
  void enableLevels(unsigned flags) noexcept {
    enabledLevels_.store(flags, std::memory_order_relaxed);
  }

  /// Opens a record; the result is empty when logging is off or every sink's filter rejects it.
  Record openRecord(unsigned severity);

 private:
  class Source;

  std::atomic<unsigned> enabledLevels_{0};
  std::unique_ptr<Source> source_;
};

/// A record while its text is formed. Destroying it before `push()` drops it.
template <class CharT>
class basic_diagnostic_logger<CharT>::Record {
 public:
  Record() noexcept;
  Record(Record&&) noexcept;
  Record& operator=(Record&&) noexcept;
  ~Record();

  explicit operator bool() const noexcept { return draft_ != nullptr; }

  /// Takes the record's text. Only for a record that is not empty.
  std::basic_ostream<CharT>& stream();

  /// Hands the record to the sinks and leaves this object empty. Only for a record that is not
  /// empty.
  void push();

 private:
  friend class basic_diagnostic_logger;
  struct Draft;

  explicit Record(std::unique_ptr<Draft> draft) noexcept;

  std::unique_ptr<Draft> draft_;
};

extern template class TARN_PLATFORM_API basic_diagnostic_logger<char>;

}  // namespace foundation::log
