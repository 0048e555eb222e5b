// Versions and ranges as texts and as values: what is read prints as it was written and reads the
// same again, comparing is an order, and ranges hold what lies between their bounds.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "catalogue/precedence.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/version_text.hpp"
#include "expectation.hpp"
#include "pathfinder/metamodel.hpp"

using namespace tarn::evolution::catalogue;
using namespace tarn::evolution::pathfinder;
using fuzz::expect;

namespace {

constexpr std::size_t mostTexts = 8;  // every three of them are compared

/// What `read` makes of its texts; nothing when it refuses them.
template <class Read, class... Texts>
auto readIfAny(const Read& read, const Texts&... texts) -> std::optional<decltype(read(texts...))> {
  try {
    return read(texts...);
  } catch (const std::invalid_argument&) {
    return std::nullopt;
  }
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; lines.size() < mostTexts && std::getline(in, line);) lines.push_back(line);
  return lines;
}

/// Bytes as UTF-16 units as they come, which need not be well-formed.
std::u16string unitsOf(const std::string& bytes) {
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                   static_cast<unsigned char>(bytes[i + 1]) << 8);
  }
  return units;
}

/// One unit for each byte, so that digits stay digits.
std::u16string widened(const std::string& bytes) {
  std::u16string units;
  for (const char byte : bytes) units += static_cast<unsigned char>(byte);
  return units;
}

/// The number at the beginning of a text, which it is taken from; by 64 bits, as numbers beyond
/// are.
std::optional<std::uint64_t> takeNumber(std::u16string& text) {
  const std::size_t length = std::min(text.find_first_not_of(u"0123456789"), text.size());
  if (length == 0 || (text[0] == u'0' && length > 1)) return std::nullopt;
  std::uint64_t value = 0;
  for (const char16_t digit : text.substr(0, length)) value = value * 10 + (digit - u'0');
  text.erase(0, length);
  return value;
}

/// `SemVer::parse`, read from its documentation.
std::optional<SemVer> plainlyParsed(std::u16string text) {
  text = text.substr(0, text.find(u'\0'));
  std::vector<std::uint64_t> numbers;
  while (true) {
    const auto number = takeNumber(text);
    if (!number) return std::nullopt;
    numbers.push_back(*number);
    if (text.empty()) break;
    if (text[0] != u'.') return std::nullopt;
    text.erase(0, 1);
  }
  if (numbers.size() < 2 || numbers.size() > 3) return std::nullopt;
  numbers.resize(3);
  return SemVer{numbers[0], numbers[1], numbers[2]};
}

void readUnits(const std::u16string& units) {
  const auto version = SemVer::parse(units);
  expect(version == plainlyParsed(units), [&](auto& out) { out << VersionId(units); });
  expect(!version || SemVer::parse(widened(textOf(*version))) == version,
         [&](auto& out) { out << *version; });
  textOf(VersionId(units));
}

/// The version that a text is; nothing when it is refused.
std::optional<VersionId> readVersion(const std::string& text) {
  auto version = readIfAny(parseVersion, text);
  const auto semantic = readIfAny(parseSemVer, text);
  const auto name = readIfAny(parseName, text);
  const auto tell = [&](auto& out) { out << '"' << text << '"'; };
  expect(!name || textOf(VersionId(*name)) == text, tell);
  expect(name || !version, tell);
  expect(semantic.has_value() == (version && version->isSemVer()), tell);
  if (!version) return std::nullopt;
  expect(!semantic || *semantic == version->getSemVer(), tell);
  const std::string shown = textOf(*version);
  expect(shown == text || (semantic && shown == text + ".0"), tell);
  expect(readIfAny(parseVersion, shown) == version && textOf(parseVersion(shown)) == shown, tell);
  return version;
}

std::size_t hashOf(const VersionId& version) {
  return std::hash<Metamodel>()(Metamodel(u"name", version, {}));
}

void compareAll(const std::vector<VersionId>& versions) {
  for (const VersionId& left : versions) {
    for (const VersionId& right : versions) {
      const auto tell = [&](auto& out) { out << left << " and " << right; };
      const bool isSame = textOf(left) == textOf(right);
      expect((left == right) == isSame && (right == left) == isSame, tell);
      expect(!isSame || hashOf(left) == hashOf(right), tell);
      if (!left.isSemVer() || !right.isSemVer()) continue;
      const SemVer& a = left.getSemVer();
      const SemVer& b = right.getSemVer();
      expect((a < b) + (b < a) + (a == b) == 1, tell);
      for (const VersionId& third : versions) {
        if (!third.isSemVer() || !(a < b) || !(b < third.getSemVer())) continue;
        expect(a < third.getSemVer(), [&](auto& out) { tell(out), out << " and " << third; });
      }
    }
  }
}

std::optional<Precedence> precedenceIn(const std::string& text) {
  const auto version = readIfAny(parseVersion, text);
  return version ? Precedence::of(*version) : std::nullopt;
}

/// Every range of two of the texts that is one, with every single version.
std::vector<VersionRange> rangesOf(const std::vector<std::string>& texts,
                                   const std::vector<VersionId>& versions) {
  std::vector<VersionRange> ranges;
  ranges.reserve(versions.size() + texts.size() * texts.size());
  for (const VersionId& version : versions) ranges.push_back(VersionRange::singleVersion(version));
  for (const std::string& lower : texts) {
    for (const std::string& upper : texts) {
      const auto range = readIfAny(parseRange, lower, upper);
      const auto first = readIfAny(parseSemVer, lower);
      const auto last = readIfAny(parseSemVer, upper);
      const auto tell = [&](auto& out) { out << "[" << lower << ", " << upper << ")"; };
      const auto from = precedenceIn(lower);
      const auto upTo = precedenceIn(upper);
      expect(range.has_value() == (from && upTo && !(*upTo < *from)), tell);
      if (!range) continue;
      if (!first || !last) {
        const auto bounds = boundsOf(*range);
        expect(bounds && textOf(bounds->lower) == textOf(parseVersion(lower)), tell);
        expect(bounds && textOf(bounds->upper) == textOf(parseVersion(upper)), tell);
        expect(!isUnion(*range) && piecesOf(unionOf({*range, *range})).back() == *range, tell);
        continue;
      }
      expect(*range == VersionRange(SemVerRange{*first, *last}), tell);
      expect(textOf(*range) == "[" + textOf(*first) + ", " + textOf(*last) + ")", tell);
      ranges.push_back(*range);
    }
  }
  return ranges;
}

bool liesIn(const VersionRange& range, const VersionId& version) {
  if (!range.isSemVerRange()) return VersionId(range.getText()) == version;
  if (!version.isSemVer()) return false;
  const auto key = [](const SemVer& v) { return std::tuple(v.major, v.minor, v.patch); };
  const auto& [lower, upper] = range.getSemVerRange();
  return key(lower) <= key(version.getSemVer()) && key(version.getSemVer()) < key(upper);
}

void intersect(const VersionRange& left, const VersionRange& right,
               const std::vector<VersionId>& versions) {
  if (left.isSemVerRange() && !right.isSemVerRange()) return;  // throws, as it is documented to
  const VersionRange both = left.intersection(right);
  for (const VersionId& version : versions) {
    expect(both.includes(version) == (left.includes(version) && right.includes(version)),
           [&](auto& out) { out << left << " and " << right << " of " << version; });
  }
  if (left.isSemVerRange() != right.isSemVerRange()) return;
  const bool isStable = both.isSemVerRange() != left.isSemVerRange() ||  // different texts
                        both == both.intersection(left);
  expect(isStable && both == right.intersection(left),
         [&](auto& out) { out << left << " and " << right; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(data, data + size);
  readUnits(unitsOf(input));
  const std::vector<std::string> texts = linesOf(input);
  std::vector<VersionId> versions;
  for (const std::string& text : texts) {
    readUnits(widened(text));
    if (const auto version = readVersion(text)) versions.push_back(*version);
  }
  compareAll(versions);
  const std::vector<VersionRange> ranges = rangesOf(texts, versions);
  for (const VersionRange& range : ranges) {
    for (const VersionId& version : versions) {
      expect(range.includes(version) == liesIn(range, version),
             [&](auto& out) { out << range << " and " << version; });
    }
    for (const VersionRange& other : ranges) intersect(range, other, versions);
  }
  return 0;
}
