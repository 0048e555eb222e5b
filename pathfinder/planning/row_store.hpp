#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tarn::evolution::pathfinder {

/// Rows of equal width, numbered in the order in which they were added. Rows stay where they are.
template <class Value>
class RowStore {
 public:
  explicit RowStore(std::size_t width)
      : width_(width),
        rowsOfChunk_(std::max<std::size_t>(1, wantedChunk / std::max<std::size_t>(1, width))) {}

  std::uint32_t add(std::span<const Value> row) {
    if (count_ % rowsOfChunk_ == 0) {
      chunks_.push_back(std::make_unique_for_overwrite<Value[]>(rowsOfChunk_ * width_));
    }
    std::copy(row.begin(), row.end(), place(count_));
    return count_++;
  }

  std::span<const Value> operator[](std::uint32_t row) const { return {place(row), width_}; }

  std::uint32_t size() const { return count_; }
  std::size_t bytes() const { return chunks_.size() * rowsOfChunk_ * width_ * sizeof(Value); }

 private:
  static constexpr std::size_t wantedChunk = 4096;  // values

  Value* place(std::uint32_t row) const {
    return &chunks_[row / rowsOfChunk_][(row % rowsOfChunk_) * width_];
  }

  std::size_t width_;
  std::size_t rowsOfChunk_;
  std::uint32_t count_ = 0;
  std::vector<std::unique_ptr<Value[]>> chunks_;
};

}  // namespace tarn::evolution::pathfinder
