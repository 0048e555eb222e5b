#include "catalogue/import/full_version.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;

namespace {

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

bool isNumeric(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

/// Takes the numbers at the beginning of `text` off it; none when one is beyond 64 bits.
std::vector<std::uint64_t> takeNumbers(std::string_view& text) {
  std::vector<std::uint64_t> numbers;
  std::string_view rest = text;
  while (!rest.empty() && isDigit(rest.front())) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    if (error != std::errc()) return {};
    numbers.push_back(number);
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    text = rest;
    if (rest.size() < 2 || rest.front() != '.' || !isDigit(rest[1])) break;
    rest.remove_prefix(1);
  }
  return numbers;
}

std::vector<std::string> splitIdentifiers(std::string_view text) {
  std::vector<std::string> identifiers(1);
  for (const char character : text) {
    if (character == '.') {
      identifiers.emplace_back();
    } else {
      identifiers.back() += character;
    }
  }
  return identifiers;
}

bool isIdentifier(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
    return isDigit(character) || character == '-' || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z');
  });
}

/// Whether an ending without a hyphen is that of a pre-release, as "rc1" and "beta" are.
bool readsAsPrerelease(std::string_view ending) {
  constexpr std::array<std::string_view, 6> words{"alpha", "beta", "dev", "pre", "rc", "a"};
  const auto letters = static_cast<std::size_t>(
      std::find_if(ending.begin(), ending.end(), [](char c) { return c < 'A'; }) - ending.begin());
  const std::string_view word = ending.substr(0, letters);
  return word == "b" || std::find(words.begin(), words.end(), word) != words.end();
}

void takeEnding(std::string_view ending, FullVersion& version) {
  const bool isHyphened = ending.starts_with('-');
  if (isHyphened) ending.remove_prefix(1);
  version.identifiers = splitIdentifiers(ending);
  version.phase = isHyphened || readsAsPrerelease(ending) ? -1 : 1;
  version.isSemantic =
      isHyphened && version.further.empty() &&
      std::all_of(version.identifiers.begin(), version.identifiers.end(), isIdentifier);
}

/// Semantic Versioning 2.0.0, 11.4: numbers by their value and before texts.
std::weak_ordering compareIdentifiers(const std::string& left, const std::string& right) {
  const bool leftIsNumber = isNumeric(left);
  const bool rightIsNumber = isNumeric(right);
  if (leftIsNumber != rightIsNumber) {
    return leftIsNumber ? std::weak_ordering::less : std::weak_ordering::greater;
  }
  if (!leftIsNumber) return left <=> right;
  const std::string_view leftDigits =
      std::string_view(left).substr(std::min(left.find_first_not_of('0'), left.size()));
  const std::string_view rightDigits =
      std::string_view(right).substr(std::min(right.find_first_not_of('0'), right.size()));
  if (leftDigits.size() != rightDigits.size()) return leftDigits.size() <=> rightDigits.size();
  return leftDigits <=> rightDigits;
}

}  // namespace

FullVersion parseFullVersion(std::string_view text) {
  FullVersion version;
  if (text.size() > 1 && text.front() == 'v' && isDigit(text[1])) text.remove_prefix(1);
  std::string_view rest = text;
  const std::vector<std::uint64_t> numbers = takeNumbers(rest);
  if (numbers.empty()) {
    version.phase = 1;
    version.identifiers = {std::string(text)};
    return version;
  }
  version.hasNumbers = true;
  version.core.major = numbers[0];
  if (numbers.size() > 1) version.core.minor = numbers[1];
  if (numbers.size() > 2) version.core.patch = numbers[2];
  if (numbers.size() > 3) version.further.assign(numbers.begin() + 3, numbers.end());
  version.isSemantic = version.further.empty();
  rest = rest.substr(0, rest.find('+'));
  if (!rest.empty()) takeEnding(rest, version);
  return version;
}

std::weak_ordering comparePrecedence(const FullVersion& left, const FullVersion& right) {
  if (left.hasNumbers != right.hasNumbers) return left.hasNumbers <=> right.hasNumbers;
  if (left.core != right.core) return left.core <=> right.core;
  if (left.further != right.further) return left.further <=> right.further;
  if (left.phase != right.phase) return left.phase <=> right.phase;
  return std::lexicographical_compare_three_way(left.identifiers.begin(), left.identifiers.end(),
                                                right.identifiers.begin(), right.identifiers.end(),
                                                compareIdentifiers);
}

std::optional<SemVer> nextPatch(const SemVer& version) {
  constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  if (version.patch < most) return SemVer{version.major, version.minor, version.patch + 1};
  if (version.minor < most) return SemVer{version.major, version.minor + 1, 0};
  if (version.major < most) return SemVer{version.major + 1, 0, 0};
  return std::nullopt;
}

}  // namespace tarn::evolution::catalogue
