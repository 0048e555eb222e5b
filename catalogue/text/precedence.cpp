// An order-preserving code. What is no semantic version has, beside three numbers of 64 bits, a
// rest: bytes that compare as the versions do.
//
// - The rest of a pre-release begins with 0, that of a version with a number beyond 64 bits with 2;
//   a semantic version, which has none, counts as 1. So among equal numbers pre-releases come
//   first.
// - From its first number beyond 64 bits on, a version has the greatest numbers there are, and all
//   of its numbers in the rest. So it comes after all versions with smaller numbers, and those that
//   share its numbers are told apart by their rests.
// - A number is the count of its digits, in four bytes, and its digits. An identifier that is a
//   number has 1 before it, any other 2 before it and 0 behind; 0 ends the list, so that the
//   shorter list comes first, and 3 stands for the list of a release.

#include "catalogue/precedence.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;

namespace {

constexpr char prerelease = 0;
constexpr char semantic = 1;
constexpr char beyond = 2;

bool isDigit(char16_t unit) {
  return unit >= u'0' && unit <= u'9';
}

bool isIdentifierUnit(char16_t unit) {
  return isDigit(unit) || unit == u'-' || (unit >= u'a' && unit <= u'z') ||
         (unit >= u'A' && unit <= u'Z');
}

bool isNumeric(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(), isDigit);
}

/// Whether it is a number without leading zeros.
bool isNumber(std::u16string_view text) {
  return !text.empty() && isNumeric(text) && (text.size() == 1 || text.front() != u'0');
}

/// Takes what stands before the first of `ends`, or all, off the text.
std::u16string_view takeUntil(std::u16string_view& text, std::u16string_view ends) {
  const std::u16string_view taken = text.substr(0, text.find_first_of(ends));
  text.remove_prefix(taken.size());
  return taken;
}

bool take(std::u16string_view& text, char16_t unit) {
  if (!text.starts_with(unit)) return false;
  text.remove_prefix(1);
  return true;
}

void append(std::string& code, std::u16string_view text) {
  for (const char16_t unit : text) code += static_cast<char>(unit);
}

void appendNumber(std::string& code, std::u16string_view digits) {
  for (unsigned shift = 32; shift > 0;) {
    shift -= 8;
    code += static_cast<char>((digits.size() >> shift) & 0xff);
  }
  append(code, digits);
}

void appendIdentifier(std::string& code, std::u16string_view identifier) {
  if (isNumeric(identifier)) {
    code += '\1';
    appendNumber(code, identifier);
  } else {
    code += '\2';
    append(code, identifier);
    code += '\0';
  }
}

/// Hands the identifiers of a list to `receive`; whether all are some. `mayBeginWithZero` is said
/// of their numbers.
template <class Receive>
bool readIdentifiers(std::u16string_view text, bool mayBeginWithZero, const Receive& receive) {
  for (;;) {
    const std::u16string_view identifier = takeUntil(text, u".");
    if (identifier.empty() ||
        !std::all_of(identifier.begin(), identifier.end(), isIdentifierUnit)) {
      return false;
    }
    if (!mayBeginWithZero && isNumeric(identifier) && !isNumber(identifier)) return false;
    receive(identifier);
    if (!take(text, u'.')) return text.empty();
  }
}

/// Empty beyond 64 bits.
std::optional<std::uint64_t> valueOf(std::u16string_view digits) {
  constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t value = 0;
  for (const char16_t digit : digits) {
    const auto units = static_cast<std::uint64_t>(digit - u'0');
    if (value > (most - units) / 10) return std::nullopt;
    value = value * 10 + units;
  }
  return value;
}

using Numbers = std::array<std::u16string_view, 3>;

/// Takes three numbers off the text; whether they are there.
bool takeNumbers(std::u16string_view& text, Numbers& numbers) {
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0 && !take(text, u'.')) return false;
    numbers[i] = takeUntil(text, u".-+");
    if (!isNumber(numbers[i])) return false;
  }
  return true;
}

/// The numbers as far as they fit, the greatest ones from the first that does not; whether all do.
std::pair<SemVer, bool> fit(const Numbers& numbers) {
  constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  SemVer fitted{most, most, most};
  constexpr std::array parts{&SemVer::major, &SemVer::minor, &SemVer::patch};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const auto value = valueOf(numbers[i]);
    if (!value) return {fitted, false};
    fitted.*parts[i] = *value;
  }
  return {fitted, true};
}

char kindOf(const std::shared_ptr<const std::string>& rest) {
  return rest ? rest->front() : semantic;
}

}  // namespace

std::optional<Precedence> Precedence::read(std::u16string_view text) {
  Numbers numbers;
  if (!takeNumbers(text, numbers)) return std::nullopt;
  const auto [fitted, isFitting] = fit(numbers);
  std::string identifiers;
  const bool isPrerelease = take(text, u'-');
  if (isPrerelease) {
    const auto add = [&](std::u16string_view each) { appendIdentifier(identifiers, each); };
    if (!readIdentifiers(takeUntil(text, u"+"), false, add)) return std::nullopt;
    identifiers += '\0';
  }
  if (take(text, u'+') && !readIdentifiers(std::exchange(text, {}), true, [](auto) {})) {
    return std::nullopt;
  }
  if (!text.empty()) return std::nullopt;
  if (isFitting && !isPrerelease) return fitted;
  if (isFitting) return Precedence(fitted, prerelease + identifiers);
  std::string rest(1, beyond);
  for (const std::u16string_view number : numbers) appendNumber(rest, number);
  return Precedence(fitted, rest + (isPrerelease ? identifiers : "\3"));
}

std::optional<Precedence> Precedence::of(const pathfinder::VersionId& version) {
  if (version.isSemVer()) return version.getSemVer();
  return read(version.getText());
}

std::optional<SemVer> Precedence::semVer() const {
  return rest_ ? std::nullopt : std::optional(numbers_);
}

std::strong_ordering Precedence::operator<=>(const Precedence& other) const {
  if (const auto order = numbers_ <=> other.numbers_; order != 0) return order;
  if (const auto order = kindOf(rest_) <=> kindOf(other.rest_); order != 0) return order;
  return rest_ && rest_ != other.rest_ ? *rest_ <=> *other.rest_ : std::strong_ordering::equal;
}

}  // namespace tarn::evolution::catalogue
