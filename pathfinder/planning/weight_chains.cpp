// Chains are interned, so that equal ones are one node, and have jump pointers after Myers ("An
// applicative random-access stack", 1983): each node knows its parent and one ancestor further up.
// The distances of these jumps are those of the skew-binary number of the node's length, so nodes
// of one length jump equally far, and any ancestor is reached in a logarithm of steps.

#include "pathfinder/planning/weight_chains.hpp"

namespace tarn::evolution::pathfinder {

WeightChains::WeightChains() : nodes_{{0, empty, empty, 0}}, slots_(16) {}

WeightChain WeightChains::append(WeightChain chain, std::uint64_t weight) {
  std::size_t slot = slotOf(chain, weight);
  if (slots_[slot] != empty) return slots_[slot];
  if (2 * nodes_.size() > slots_.size()) {
    grow();
    slot = slotOf(chain, weight);
  }
  const Node& parent = nodes_[chain];
  const Node& above = nodes_[parent.jump];
  const bool jumpsEquallyFar =
      parent.length - above.length == above.length - nodes_[above.jump].length;
  const auto added = static_cast<WeightChain>(nodes_.size());
  const Node node{weight, chain, jumpsEquallyFar ? above.jump : chain, parent.length + 1};
  nodes_.push_back(node);
  slots_[slot] = added;
  return added;
}

WeightChain WeightChains::prefix(WeightChain chain, std::uint32_t length) const {
  while (nodes_[chain].length > length) {
    const Node& node = nodes_[chain];
    chain = nodes_[node.jump].length >= length ? node.jump : node.parent;
  }
  return chain;
}

WeightChain WeightChains::commonPrefix(WeightChain left, WeightChain right) const {
  left = prefix(left, length(right));
  right = prefix(right, length(left));
  while (left != right) {
    const bool differAbove = nodes_[left].jump != nodes_[right].jump;
    left = differAbove ? nodes_[left].jump : nodes_[left].parent;
    right = differAbove ? nodes_[right].jump : nodes_[right].parent;
  }
  return left;
}

void WeightChains::copy(WeightChain chain, std::uint32_t begin, std::uint32_t end,
                        std::uint64_t* out) const {
  chain = prefix(chain, end);
  for (std::uint32_t place = end; place-- > begin; chain = nodes_[chain].parent) {
    out[place - begin] = nodes_[chain].weight;
  }
}

std::size_t WeightChains::bytes() const {
  return nodes_.capacity() * sizeof(Node) + slots_.capacity() * sizeof(WeightChain);
}

/// Where the chain of that parent and weight stands, or is to stand.
std::size_t WeightChains::slotOf(WeightChain parent, std::uint64_t weight) const {
  std::uint64_t hash = (weight ^ (std::uint64_t{parent} << 32)) * 0x9e3779b97f4a7c15U;
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t slot = (hash >> 32) & mask;; slot = (slot + 1) & mask) {
    const WeightChain chain = slots_[slot];
    if (chain == empty) return slot;
    if (nodes_[chain].parent == parent && nodes_[chain].weight == weight) return slot;
  }
}

void WeightChains::grow() {
  slots_.assign(2 * slots_.size(), empty);
  for (WeightChain chain = 1; chain < nodes_.size(); ++chain) {
    slots_[slotOf(nodes_[chain].parent, nodes_[chain].weight)] = chain;
  }
}

}  // namespace tarn::evolution::pathfinder
