#include "pathfinder/learning/selection_direction.hpp"

namespace tarn::evolution::pathfinder {

Direction directionBetween(SelectionHost& host,
                           const std::map<std::u16string, const Metamodel*>& source,
                           const std::map<std::u16string, const Metamodel*>& target) {
  Direction result = Direction::Unknown;
  for (const auto& [name, after] : target) {
    const auto before = source.find(name);
    if (before == source.end()) continue;
    const Direction direction = host.directionBetween(*before->second, *after);
    if (direction == Direction::Equal || direction == Direction::Unknown) continue;
    if (areOpposite(result, direction)) return Direction::Unknown;
    result = direction;
  }
  return result;
}

}  // namespace tarn::evolution::pathfinder
