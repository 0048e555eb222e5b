#include "catalogue/model/position_table.hpp"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace tarn::evolution::catalogue {

PositionTable::PositionTable(std::vector<Entry> entries, std::size_t names) : ends_(names) {
  std::sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
    return std::tie(left.name, left.key, left.position) <
           std::tie(right.name, right.key, right.position);
  });
  keys_.reserve(entries.size());
  positions_.reserve(entries.size());
  for (const Entry& entry : entries) {
    keys_.push_back(entry.key);
    positions_.push_back(entry.position);
    ++ends_[entry.name];
  }
  std::partial_sum(ends_.begin(), ends_.end(), ends_.begin());
}

std::span<const PositionTable::Position> PositionTable::of(NameNumber name) const {
  if (name == nothing) return {};
  const std::size_t begin = name == 0 ? 0 : ends_[name - 1];
  return std::span(positions_).subspan(begin, ends_[name] - begin);
}

std::span<const PositionTable::Position> PositionTable::at(NameNumber name,
                                                           std::uint32_t key) const {
  const auto all = of(name);
  if (all.empty()) return {};
  const auto begin = keys_.begin() + (all.data() - positions_.data());
  const auto [first, last] =
      std::equal_range(begin, begin + static_cast<std::ptrdiff_t>(all.size()), key);
  return all.subspan(static_cast<std::size_t>(first - begin),
                     static_cast<std::size_t>(last - first));
}

}  // namespace tarn::evolution::catalogue
