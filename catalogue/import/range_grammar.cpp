// Ranges as the README of the node-semver package and the documentation of operator packages
// describe them. Both come down to comparisons; what is written with fewer than three numbers, or
// an x in their place, stands for all versions that begin so.
#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <stdexcept>
#include <utility>

#include "catalogue/import/foreign_range.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;

namespace {

using Alternative = ForeignRange::Alternative;
using RangeComparison = ForeignRange::Comparison;

/// A version of which only the first numbers may be given.
struct Partial {
  std::size_t numbers = 0;  // that are given
  FullVersion version;      // the others are 0
};

FullVersion release(const SemVer& core) {
  FullVersion version;
  version.hasNumbers = true;
  version.isSemantic = true;
  version.core = core;
  return version;
}

/// The version below which all is that comes before the pre-releases of `core`.
FullVersion beforePrereleases(const SemVer& core) {
  FullVersion version = release(core);
  version.phase = -1;
  version.identifiers = {"0"};
  return version;
}

bool acceptsEveryRelease(const ForeignRange::Comparator& comparator) {
  return comparator.comparison == RangeComparison::GreaterOrEqual &&
         comparator.version.core == SemVer{} && !comparator.version.isPrerelease();
}

std::uint64_t successor(std::uint64_t number) {
  if (number + 1 == 0) throw std::invalid_argument("has a number too large to have a next one");
  return number + 1;
}

/// The first version after all that begin with the first `numbers` of `core`.
SemVer following(const SemVer& core, std::size_t numbers) {
  if (numbers == 1) return {successor(core.major), 0, 0};
  if (numbers == 2) return {core.major, successor(core.minor), 0};
  return {core.major, core.minor, successor(core.patch)};
}

class RangeParser {
 public:
  RangeParser(std::string_view text, RangeGrammar grammar) : text_(text), grammar_(grammar) {}

  ForeignRange parse() {
    const auto prereleases =
        isNpm() ? ForeignRange::Prereleases::Named : ForeignRange::Prereleases::Ordered;
    std::vector<Alternative> alternatives;
    for (bool isMore = true; isMore;) {
      const std::size_t end = text_.find("||");
      isMore = end != std::string_view::npos;
      rest_ = text_.substr(0, end);
      if (isMore) text_.remove_prefix(end + 2);
      alternatives.push_back(parseAlternative());
    }
    // Beside an alternative that accepts all releases, npm has no other one count.
    const auto isOpen = [](const Alternative& each) { return each.empty(); };
    if (std::any_of(alternatives.begin(), alternatives.end(), isOpen)) alternatives = {{}};
    return {std::move(alternatives), prereleases};
  }

 private:
  bool isNpm() const { return grammar_ == RangeGrammar::Npm; }

  void skipBlanks() {
    while (!rest_.empty() && (rest_.front() == ' ' || rest_.front() == '\t')) {
      rest_.remove_prefix(1);
    }
  }

  bool take(std::string_view sign) {
    if (!rest_.starts_with(sign)) return false;
    rest_.remove_prefix(sign.size());
    skipBlanks();
    return true;
  }

  Alternative parseAlternative() {
    Alternative result;
    skipBlanks();
    if (rest_.empty() && !isNpm()) throw std::invalid_argument("is no range: an end is empty");
    while (!rest_.empty()) {
      parseSimple(result);
      skipBlanks();
    }
    if (isNpm()) std::erase_if(result, acceptsEveryRelease);
    return result;
  }

  void parseSimple(Alternative& result) {
    if (isNpm() && (take("~>") || take("~"))) return addTilde(parsePartial(), result);
    if (isNpm() && take("^")) return addCaret(parsePartial(), result);
    if (take(">=")) return addComparison(RangeComparison::GreaterOrEqual, result);
    if (take("<=")) return addComparison(RangeComparison::LessOrEqual, result);
    if (take(">")) return addComparison(RangeComparison::Greater, result);
    if (take("<")) return addComparison(RangeComparison::Less, result);
    if (!isNpm() && (take("!=") || take("!"))) {
      return addComparison(RangeComparison::NotEqual, result);
    }
    if (!isNpm()) take("==") || take("=");
    if (isNpm()) take("=");
    const Partial lower = parsePartial();
    if (isNpm() && (rest_.starts_with(" - ") || rest_.starts_with("\t- "))) {
      rest_.remove_prefix(3);
      skipBlanks();
      add(RangeComparison::GreaterOrEqual, lower, result);
      return add(RangeComparison::LessOrEqual, parsePartial(), result);
    }
    add(RangeComparison::Equal, lower, result);
  }

  void addComparison(RangeComparison comparison, Alternative& result) {
    add(comparison, parsePartial(), result);
  }

  /// What all is below that does not reach `core`: npm keeps its pre-releases out as well.
  FullVersion bound(const SemVer& core) const {
    return isNpm() ? beforePrereleases(core) : release(core);
  }

  void addBetween(const FullVersion& lower, const SemVer& upper, Alternative& result) const {
    result.push_back({RangeComparison::GreaterOrEqual, lower});
    result.push_back({RangeComparison::Less, bound(upper)});
  }

  void addTilde(const Partial& partial, Alternative& result) const {
    if (partial.numbers == 0) return;
    addBetween(partial.version,
               following(partial.version.core, std::min<std::size_t>(2, partial.numbers)), result);
  }

  /// Nothing may change up to the first number that is not 0.
  void addCaret(const Partial& partial, Alternative& result) const {
    if (partial.numbers == 0) return;
    const SemVer& core = partial.version.core;
    std::size_t fixed = 1;
    if (core.major == 0 && partial.numbers > 1)
      fixed = core.minor == 0 && partial.numbers > 2 ? 3 : 2;
    addBetween(partial.version, following(core, fixed), result);
  }

  /// A comparison with all versions that begin with the numbers of `partial`.
  void add(RangeComparison comparison, const Partial& partial, Alternative& result) const {
    const FullVersion& version = partial.version;
    if (partial.numbers == 3) return result.push_back({comparison, version});
    if (partial.numbers == 0) {
      const bool isNone = comparison == RangeComparison::Less ||
                          comparison == RangeComparison::Greater ||
                          comparison == RangeComparison::NotEqual;
      if (isNone) result.push_back({RangeComparison::Less, beforePrereleases({})});
      return;
    }
    const SemVer after = following(version.core, partial.numbers);
    switch (comparison) {
      case RangeComparison::Less:
        return result.push_back({RangeComparison::Less, bound(version.core)});
      case RangeComparison::LessOrEqual:
        return result.push_back({RangeComparison::Less, bound(after)});
      case RangeComparison::Greater:
        return result.push_back({RangeComparison::GreaterOrEqual, release(after)});
      case RangeComparison::GreaterOrEqual:
        return result.push_back({RangeComparison::GreaterOrEqual, version});
      case RangeComparison::Equal:
        return addBetween(version, after, result);
      case RangeComparison::NotEqual:
        break;
    }
    throw std::invalid_argument("is no range: what must not be is not one version");
  }

  [[noreturn]] void failAt(std::string_view word) const {
    throw std::invalid_argument("is no range: there is no version at \"" + std::string(word) +
                                "\"");
  }

  Partial parsePartial() {
    const std::string_view word =
        rest_.substr(0, std::min(rest_.find_first_of(" \t<>=!~^"), rest_.size()));
    std::string_view left = word;
    if (left.size() > 1 && (left.front() == 'v' || left.front() == 'V')) left.remove_prefix(1);
    Partial partial;
    std::array<std::uint64_t, 3> numbers{};
    std::size_t components = 0;
    bool isOpen = false;  // an x was met
    for (; components < 3; ++components) {
      if (left.starts_with('x') || left.starts_with('X') || left.starts_with('*')) {
        left.remove_prefix(1);
        isOpen = true;
      } else {
        const auto [end, error] =
            std::from_chars(left.data(), left.data() + left.size(), numbers[components]);
        if (error != std::errc()) failAt(word);
        left.remove_prefix(static_cast<std::size_t>(end - left.data()));
        if (isOpen) {
          numbers[components] = 0;
        } else {
          ++partial.numbers;
        }
      }
      if (components == 2 || !left.starts_with('.')) break;
      left.remove_prefix(1);
    }
    const bool isWhole = partial.numbers == 3;
    partial.version = release({numbers[0], numbers[1], numbers[2]});
    if (!left.empty()) {
      // What comes after the numbers counts only where all three are given.
      const FullVersion whole = parseFullVersion("0.0.0" + std::string(left));
      if (!whole.isSemantic || components < 2) failAt(word);
      if (isWhole) {
        partial.version.phase = whole.phase;
        partial.version.identifiers = whole.identifiers;
      }
    }
    if (!isNpm() && !isWhole && !isOpen) failAt(word);
    rest_.remove_prefix(word.size());
    return partial;
  }

  std::string_view text_;  // alternatives that have not been read
  RangeGrammar grammar_;
  std::string_view rest_;  // of the alternative
};

}  // namespace

ForeignRange parseForeignRange(std::string_view text, RangeGrammar grammar) {
  try {
    return RangeParser(text, grammar).parse();
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument("\"" + std::string(text) + "\" " + error.what());
  }
}

}  // namespace tarn::evolution::catalogue
