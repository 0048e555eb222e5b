#include "support/random_question.hpp"

#include <algorithm>

#include "platform/exception.hpp"

namespace test {

RandomQuestion::RandomQuestion(unsigned seed, Shape shape) : random_(seed) {
  if (shape == Web) {
    weave(static_cast<char>('B' + (chance(5) ? 4 + upTo(2) : upTo(4))));
  } else {
    make(static_cast<char>('B' + (chance(3) ? 3 + upTo(3) : upTo(3))));
  }
}

void RandomQuestion::ask(const std::string& from, const std::string& to) {
  repository.add(catalogue);
  try {
    sources = repository.baselines(from);
    targets = repository.baselines(to);
  } catch (const foundation::core::except::IMsgIDException&) {
    sources.clear();
  }
}

void RandomQuestion::make(char end) {
  std::string from;
  std::string to;
  for (char name = 'A'; name < end; ++name) {
    addVersions(name, upTo(5));
    if (chance(80)) from += std::string{' ', name} + versions_[name].front();
    if (chance(80)) to += std::string{' ', name} + versions_[name].back();
  }
  direction = chance(60) ? forward : anyDirection;
  ask(from, to);
}

void RandomQuestion::addVersions(char name, std::size_t last) {
  std::vector<std::string>& versions = versions_[name];
  for (std::size_t n = 1; n <= last; ++n) {
    const std::string number = std::to_string(n);
    const bool isText = chance(10);
    versions.push_back((isText ? "text" : "") + number);
    catalogue +=
        std::string{' ', name} + versions.back() + (isText && n % 2 == 0 ? "~" + number : "");
    char separator = ':';
    for (char needed = 'A'; needed < name; ++needed) {
      if (!chance(35)) continue;
      catalogue += std::string{separator, needed} + someRange(versions_[needed]);
      separator = '+';
    }
  }
  for (const auto& before : versions) {
    for (const auto& after : versions) {
      if (&before == &after || (&before + 1 != &after && !chance(20))) continue;
      const std::string hop = std::string{' ', name}.append(before).append(">").append(after);
      for (int copies = chance(8) ? 2 : 1; copies > 0; --copies) {
        catalogue += hop + (chance(15) ? "!" : "");
      }
    }
  }
}

std::string RandomQuestion::someRange(const std::vector<std::string>& versions) {
  const std::size_t lower = upTo(versions.size());
  const std::string& single = versions[lower - 1];
  if (single.starts_with("text") && chance(50)) return single;
  return "[" + std::to_string(lower) + "," + std::to_string(lower + upTo(3)) + ")";
}

/// Lets some of the metamodels move in each of a few epochs, and has versions need what they stood
/// beside.
void RandomQuestion::weave(char end) {
  std::vector<std::map<char, std::size_t>> epochs(1);
  for (char name = 'A'; name < end; ++name) epochs[0][name] = 1;
  for (std::size_t left = 2 + upTo(3); left > 0; --left) {
    epochs.push_back(epochs.back());
    for (auto& [name, version] : epochs.back()) version += chance(50) ? 1 : 0;
  }
  std::string from;
  std::string to;
  for (const auto& [name, last] : epochs.back()) {
    for (std::size_t version = 1; version <= last; ++version) weaveVersion(name, version, epochs);
    for (std::size_t version = 1; version < last; ++version) {
      const std::string hop = std::string{' ', name} + std::to_string(version) + ">";
      catalogue += hop + std::to_string(version + 1) + (chance(20) ? "!" : "");
      if (chance(10)) catalogue += hop + std::to_string(version + 1) + (chance(50) ? "!" : "");
      if (version + 2 <= last && chance(35)) {
        catalogue += hop + std::to_string(version + 2) + (chance(50) ? "!" : "");
      }
    }
    from += std::string{' ', name, '1'};
    if (chance(90)) to += std::string{' ', name} + std::to_string(last);
  }
  direction = chance(80) ? forward : anyDirection;
  ask(from, to);
}

void RandomQuestion::weaveVersion(char name, std::size_t version,
                                  const std::vector<std::map<char, std::size_t>>& epochs) {
  catalogue += std::string{' ', name} + std::to_string(version);
  char separator = ':';
  for (char needed = 'A'; needed < name; ++needed) {
    if (!chance(45)) continue;
    std::size_t lower = ~std::size_t{0};
    std::size_t upper = 0;
    for (const auto& epoch : epochs) {
      if (epoch.at(name) != version) continue;
      lower = std::min(lower, epoch.at(needed));
      upper = std::max(upper, epoch.at(needed) + 1);
    }
    if (chance(25) && lower > 1) --lower;
    if (chance(25)) ++upper;
    catalogue += std::string{separator, needed} + "[" + std::to_string(lower) + "," +
                 std::to_string(upper) + ")";
    separator = '+';
  }
}

}  // namespace test
