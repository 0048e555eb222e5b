#pragma once

#include <cstddef>
#include <cstdint>

namespace fuzz {

/// A fuzzer's input as a source of decisions. Gives zeros when it is used up.
class ByteSource {
 public:
  ByteSource(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

  bool isEmpty() const { return next_ == end_; }

  std::uint8_t byte() { return isEmpty() ? std::uint8_t{0} : *next_++; }

  /// One of the numbers below `count`, which is at most 256.
  std::size_t below(std::size_t count) { return byte() % count; }

 private:
  const std::uint8_t* next_;
  const std::uint8_t* end_;
};

}  // namespace fuzz
