#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tarn::evolution::pathfinder {

/// Memory in pieces of some words each, to be given back piece by piece, all together freed at the
/// end.
class WordPool {
 public:
  std::uint64_t* take(std::size_t words) {
    if (words < free_.size() && !free_[words].empty()) {
      std::uint64_t* piece = free_[words].back();
      free_[words].pop_back();
      return piece;
    }
    if (left_ < words) addChunk(words);
    left_ -= words;
    return std::exchange(next_, next_ + words);
  }

  void giveBack(std::uint64_t* piece, std::size_t words) {
    if (words >= free_.size()) free_.resize(words + 1);
    free_[words].push_back(piece);
  }

  std::size_t bytes() const { return bytes_; }

 private:
  static constexpr std::size_t usualChunk = 8192;  // words

  void addChunk(std::size_t words) {
    const std::size_t size = words > usualChunk ? words : usualChunk;
    next_ = chunks_.emplace_back(std::make_unique_for_overwrite<std::uint64_t[]>(size)).get();
    left_ = size;
    bytes_ += size * sizeof(std::uint64_t);
  }

  std::vector<std::unique_ptr<std::uint64_t[]>> chunks_;
  std::uint64_t* next_ = nullptr;  // in the last chunk
  std::size_t left_ = 0;
  std::size_t bytes_ = 0;
  std::vector<std::vector<std::uint64_t*>> free_;  // by size
};

}  // namespace tarn::evolution::pathfinder
