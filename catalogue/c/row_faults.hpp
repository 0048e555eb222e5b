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
    try {
      first_ = error.what();
    } catch (const std::bad_alloc&) {  // first_ is empty
    }
  }

  /// Throws for a callback that has returned `result` after this.
  void expectNone(int32_t result, const std::string& callback) const {
    if (hasAny_ && first_.empty()) throw std::bad_alloc();
    if (hasAny_) throw CallbackFailed(callback + " could not add a row: " + first_);
    if (result != 0) throw CallbackFailed(callback + " returned " + std::to_string(result));
  }

 private:
  bool hasAny_ = false;
  std::string first_;
};

}  // namespace tarn::evolution::catalogue::c
