#pragma once

#include <exception>
#include <new>
#include <string>

#include "catalogue/c/boundary.hpp"

namespace tarn::evolution::catalogue::c {

/// What a callback could not add, which it may not have told by what it returns: an answer that
/// lacks a row would be wrong.
class RowFaults {
 public:
  /// Of the first one the message is kept, if memory allows.
  void note(const std::exception& error) noexcept {
    if (hasAny_) return;
    hasAny_ = true;
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return;
    try {
      message_ = error.what();
    } catch (const std::bad_alloc&) {  // which is then what is thrown
    }
  }

  /// Throws for a callback that has returned `result` after this.
  void expectNone(int32_t result, const std::string& callback) const {
    if (hasAny_ && message_.empty()) throw std::bad_alloc();
    if (hasAny_) throw CallbackFailed(callback + " could not add a row: " + message_);
    if (result != 0) throw CallbackFailed(callback + " returned " + std::to_string(result));
  }

 private:
  bool hasAny_ = false;
  std::string message_;  ///< empty where memory was short
};

}  // namespace tarn::evolution::catalogue::c
