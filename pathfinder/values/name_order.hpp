#pragma once

#include <algorithm>
#include <vector>

namespace tarn::evolution::pathfinder {

/// Pointers to the entries of a map keyed by name, in ascending UTF-16 order of the names.
template <class NameMap>
std::vector<const typename NameMap::value_type*> inNameOrder(const NameMap& map) {
  std::vector<const typename NameMap::value_type*> entries;
  entries.reserve(map.size());
  for (const auto& entry : map) entries.push_back(&entry);
  std::sort(entries.begin(), entries.end(),
            [](const auto* left, const auto* right) { return left->first < right->first; });
  return entries;
}

/// Calls `visit(entry)` for the entries of a map keyed by name, in ascending UTF-16 order of the
/// names, until it returns false: cheaper than sorting them all if that is soon.
template <class NameMap, class Visit>
void visitInNameOrder(const NameMap& map, const Visit& visit) {
  std::vector<const typename NameMap::value_type*> waiting;
  waiting.reserve(map.size());
  for (const auto& entry : map) waiting.push_back(&entry);
  const auto isLater = [](const auto* left, const auto* right) {
    return right->first < left->first;
  };
  std::make_heap(waiting.begin(), waiting.end(), isLater);
  while (!waiting.empty() && visit(*waiting.front())) {
    std::pop_heap(waiting.begin(), waiting.end(), isLater);
    waiting.pop_back();
  }
}

}  // namespace tarn::evolution::pathfinder
