#pragma once

#include <string>
#include <vector>

#include "catalogue/explanation/named_version.hpp"
#include "pathfinder/hop.hpp"
#include "pathfinder/version_id.hpp"

/// Names, versions and lists as the program writes them in sentences, safe on a terminal (see
/// `toVisible`).
namespace evopath {

std::string visible(const std::u16string& name);
std::string visible(const tarn::evolution::pathfinder::VersionId& version);

/// "[1.0.0, 2.0.0)", or just the version when the range admits no other.
std::string visible(const tarn::evolution::pathfinder::VersionRange& range);

/// "shape 1.0.0".
std::string visible(const tarn::evolution::catalogue::NamedVersion& version);

/// "1.0.0 -> 2.0.0".
std::string visible(const tarn::evolution::pathfinder::Hop& hop);

/// "a", "a and b", "a, b and c"; of more than a few only the first, and how many others there are.
std::string listed(const std::vector<std::string>& items, const std::string& conjunction = "and");

template <class Item>
std::vector<std::string> visibleEach(const std::vector<Item>& items) {
  std::vector<std::string> result;
  result.reserve(items.size());
  for (const Item& item : items) result.push_back(visible(item));
  return result;
}

}  // namespace evopath
