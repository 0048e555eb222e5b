#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::evolution::pathfinder {

using BitWord = std::uint64_t;

constexpr std::size_t bitsOfWord = 64;

/// How many words a set of numbers below `limit` takes.
constexpr std::size_t wordsFor(std::size_t limit) {
  return (limit + bitsOfWord - 1) / bitsOfWord;
}

/// A set of small numbers, a bit each, that stands elsewhere.
class ConstBitRow {
 public:
  ConstBitRow(const BitWord* words, std::size_t wordCount) : words_(words), wordCount_(wordCount) {}

  bool contains(std::size_t number) const {
    return (words_[number / bitsOfWord] >> (number % bitsOfWord) & 1) != 0;
  }

  /// Whether some number is in both rows, which are of one size.
  bool meets(ConstBitRow other) const {
    BitWord common = 0;
    for (std::size_t i = 0; i < wordCount_; ++i) common |= words_[i] & other.words_[i];
    return common != 0;
  }

  /// Whether some number is in both rows and not in a third one.
  bool meetsOutside(ConstBitRow other, ConstBitRow excluded) const {
    BitWord common = 0;
    for (std::size_t i = 0; i < wordCount_; ++i) {
      common |= words_[i] & other.words_[i] & ~excluded.words_[i];
    }
    return common != 0;
  }

  const BitWord* words() const { return words_; }
  std::size_t wordCount() const { return wordCount_; }

 private:
  const BitWord* words_;
  std::size_t wordCount_;
};

/// The same, to be changed.
class BitRow : public ConstBitRow {
 public:
  BitRow(BitWord* words, std::size_t wordCount) : ConstBitRow(words, wordCount), words_(words) {}

  void insert(std::size_t number) { wordOf(number) |= maskOf(number); }
  void erase(std::size_t number) { wordOf(number) &= ~maskOf(number); }

  /// Adds what is in another row of the same size; whether that was anything new.
  bool unite(ConstBitRow other) {
    BitWord added = 0;
    for (std::size_t i = 0; i < wordCount(); ++i) {
      added |= other.words()[i] & ~words_[i];
      words_[i] |= other.words()[i];
    }
    return added != 0;
  }

 private:
  BitWord& wordOf(std::size_t number) { return words_[number / bitsOfWord]; }
  static BitWord maskOf(std::size_t number) { return BitWord{1} << (number % bitsOfWord); }

  BitWord* words_;
};

}  // namespace tarn::evolution::pathfinder
