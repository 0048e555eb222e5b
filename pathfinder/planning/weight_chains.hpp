#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarn::evolution::pathfinder {

/// A sequence of step weights, the weight of a path's last step first. Two chains of one set are
/// equal when their numbers are.
using WeightChain = std::uint32_t;

/// All sequences of step weights that one search has decided, each sharing what it begins with: a
/// tree in which a chain is a node, and its parent the chain without the last weight. So adding a
/// weight takes constant time and memory, telling equality one comparison, and finding the first
/// difference of two chains the logarithm of their length.
class WeightChains {
 public:
  static constexpr WeightChain empty = 0;

  WeightChains();

  /// The chain with one more weight, that of the step before. The same chain for the same weight.
  WeightChain append(WeightChain chain, std::uint64_t weight);

  std::uint32_t length(WeightChain chain) const { return nodes_[chain].length; }

  /// The first `length` weights of a chain that is at least as long.
  WeightChain prefix(WeightChain chain, std::uint32_t length) const;

  /// The longest chain that both begin with.
  WeightChain commonPrefix(WeightChain left, WeightChain right) const;

  /// The weight at a place of a chain that is longer.
  std::uint64_t weightAt(WeightChain chain, std::uint32_t place) const {
    return nodes_[prefix(chain, place + 1)].weight;
  }

  /// Writes the weights from `begin` up to but without `end`, which lie within the chain.
  void copy(WeightChain chain, std::uint32_t begin, std::uint32_t end, std::uint64_t* out) const;

  std::size_t bytes() const;

 private:
  struct Node {
    std::uint64_t weight;
    WeightChain parent;
    WeightChain jump;  ///< an ancestor; how far up depends on the length alone
    std::uint32_t length;
  };

  std::size_t slotOf(WeightChain parent, std::uint64_t weight) const;
  void grow();

  std::vector<Node> nodes_;         // the first is the empty chain
  std::vector<WeightChain> slots_;  // a hash table of the others, by parent and weight; 0 is free
};

}  // namespace tarn::evolution::pathfinder
