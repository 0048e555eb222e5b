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

}  // namespace tarn::evolution::pathfinder
