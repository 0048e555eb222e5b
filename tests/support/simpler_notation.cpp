#include "support/simpler_notation.hpp"

#include <cctype>
#include <regex>
#include <set>

#include "support/items.hpp"

namespace test {

namespace {

using Items = std::vector<std::string>;
using Match = std::sregex_iterator;

/// The item with the match replaced.
std::string replaced(const std::string& item, const Match& match, const std::string& by) {
  std::string result = item;
  return result.replace(static_cast<std::size_t>(match->position()),
                        static_cast<std::size_t>(match->length()), by);
}

/// Gives what an item depends on its first mark, ":", if that went with what stood before.
std::string mended(std::string item) {
  const std::size_t second = item.find('+');
  if (second != std::string::npos && item.find(':') == std::string::npos) item[second] = ':';
  return item;
}

Items simplerItems(const std::string& item) {
  if (item == "forward" || item == "backward") return {"any"};
  Items result;
  static const std::regex parts("[:+=][^:+=]+|!|~[^:=]+|@.|/[0-9]+");
  for (Match match(item.begin(), item.end(), parts); match != Match(); ++match) {
    result.push_back(mended(replaced(item, match, "")));
  }
  static const std::regex ranges("([0-9]{1,9})(,|[.][.])([0-9]{1,9})");
  for (Match match(item.begin(), item.end(), ranges); match != Match(); ++match) {
    const int lower = std::stoi((*match)[1]);
    const int upper = std::stoi((*match)[3]);
    if (upper <= lower + 1) continue;
    for (const auto& [from, to] : {std::pair(lower + 1, upper), std::pair(lower, upper - 1)}) {
      const std::string narrower = std::to_string(from) + (*match)[2].str() + std::to_string(to);
      result.push_back(replaced(item, match, narrower));
    }
  }
  return result;
}

std::string withoutName(const Items& items, char name) {
  const std::regex dependency(std::string("[:+=][&%]?") + name + "[^:+=]*");
  Items result;
  for (const std::string& item : items) {
    if (item[0] != name) result.push_back(mended(std::regex_replace(item, dependency, "")));
  }
  return joined(result);
}

std::string withoutRun(const Items& items, std::size_t begin, std::size_t end) {
  Items result;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i < begin || i >= end || items[i] == "|") result.push_back(items[i]);
  }
  return joined(result);
}

}  // namespace

std::vector<std::string> simplerNotation(const std::string& text) {
  const Items items = itemsIn(text);
  std::vector<std::string> simpler;
  for (std::size_t length = items.size(); length > 1; length = (length + 1) / 2) {
    for (std::size_t begin = 0; begin < items.size(); begin += length) {
      simpler.push_back(withoutRun(items, begin, begin + length));
    }
  }
  std::set<char> names;
  for (const std::string& item : items) {
    if (std::isalpha(static_cast<unsigned char>(item[0])) != 0) names.insert(item[0]);
  }
  for (const char name : names) simpler.push_back(withoutName(items, name));
  for (std::size_t i = 0; i < items.size(); ++i) simpler.push_back(withoutRun(items, i, i + 1));
  for (std::size_t i = 0; i < items.size(); ++i) {
    for (const std::string& item : simplerItems(items[i])) {
      Items changed = items;
      changed[i] = item;
      simpler.push_back(joined(changed));
    }
  }
  return simpler;
}

}  // namespace test
