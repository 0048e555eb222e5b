#include "small_catalogue.hpp"

#include <algorithm>

namespace fuzz {

namespace {

constexpr std::size_t mostNames = 5;  // with those that are added

std::string hop(char name, const std::string& from, const std::string& to, bool isExpensive) {
  return std::string{name}.append(from).append(">").append(to).append(isExpensive ? "!" : "");
}

}  // namespace

SmallCatalogue::SmallCatalogue(ByteSource& bytes) {
  const std::size_t count = 2 + bytes.below(3);
  for (std::size_t i = 0; i < count; ++i) {
    names_.emplace_back();
    addVersions(static_cast<char>(firstName + i), bytes);
  }
  for (char name = firstName; name < endName(); ++name) addHops(name, bytes);
}

const std::vector<std::string>& SmallCatalogue::versions(char name) const {
  return names_[static_cast<std::size_t>(name - firstName)];
}

/// Oldest first, or newest first, which is the order that the host prefers them in.
void SmallCatalogue::addVersions(char name, ByteSource& bytes) {
  const std::size_t shape = bytes.byte();
  std::vector<std::string> items;
  for (std::size_t number = 1; number <= 1 + shape % 4; ++number) {
    const std::string digit = std::to_string(number);
    const std::size_t kind = bytes.below(8);  // of version; mostly semantic
    names_.back().push_back(kind < 2 ? "text" + digit : digit);
    items.push_back(metamodel(name, names_.back().back() + (kind == 1 ? "~" + digit : ""), bytes));
  }
  if (shape >= 128) std::reverse(items.begin(), items.end());
  for (const std::string& item : items) text_ += " " + item;
}

std::string SmallCatalogue::metamodel(char name, const std::string& version, ByteSource& bytes) {
  std::string result = std::string{name} + version;
  char separator = ':';
  for (char needed = firstName; needed < name; ++needed) {
    for (std::size_t copies = bytes.below(16); copies < 6; copies += 5) {  // twice for 0
      result += std::string{separator, needed} + range(needed, bytes);
      separator = '+';
    }
  }
  return result;
}

std::string SmallCatalogue::range(char name, ByteSource& bytes) const {
  const std::size_t choice = bytes.byte();
  const std::size_t lower = 1 + choice % 4;
  const std::size_t upper = std::min<std::size_t>(5, lower + choice / 4 % 4);
  if (choice < 192) return "[" + std::to_string(lower) + "," + std::to_string(upper) + ")";
  return versions(name)[choice % versions(name).size()];
}

/// A bit for each version to go to, the next one's the other way round, and a bit for each that is
/// expensive to go to.
void SmallCatalogue::addHops(char name, ByteSource& bytes) {
  const auto& all = versions(name);
  for (std::size_t from = 0; from < all.size(); ++from) {
    const std::size_t bits = bytes.byte() ^ (std::size_t{2} << from);
    for (std::size_t to = 0; to < all.size(); ++to) {
      if (to == from || (bits >> to & 1) == 0) continue;
      text_ += " " + hop(name, all[from], all[to], (bits >> (to + 4) & 1) != 0);
    }
  }
}

std::string SmallCatalogue::addMetamodel(ByteSource& bytes) {
  const std::size_t place = bytes.below(std::min(mostNames, names_.size() + 1));
  if (place == names_.size()) names_.emplace_back();
  const char name = static_cast<char>(firstName + place);
  const std::string version = std::to_string(nextVersion_++);
  std::string added = metamodel(name, version, bytes);
  if (!names_[place].empty()) added += " " + hop(name, names_[place].back(), version, false);
  names_[place].push_back(version);
  text_ += " " + added;
  return added;
}

std::string SmallCatalogue::addHop(ByteSource& bytes) {
  const std::size_t choice = bytes.byte();
  const std::size_t place = choice % names_.size();
  const auto& all = names_[place];
  const std::string& from = all[bytes.below(all.size())];
  const std::string& to = all[bytes.below(all.size())];
  std::string added = hop(static_cast<char>(firstName + place), from, to, choice >= 192);
  text_ += " " + added;
  return added;
}

}  // namespace fuzz
