#include "catalogue/version_text.hpp"

#include <optional>
#include <stdexcept>

#include "catalogue/precedence.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/utf16.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

std::string quoted(const std::string& text) {
  return "\"" + text + "\"";
}

std::u16string parseText(const std::string& utf8) {
  if (utf8.empty()) throw std::invalid_argument("must not be empty");
  if (utf8.find('\0') != std::string::npos) {
    throw std::invalid_argument("must not hold the character U+0000");
  }
  return toUtf16(utf8);
}

/// Whether the version reads as the text again. It does not when a component was beyond 64 bits and
/// has wrapped: nothing else is lost in parsing but a patch that was left out.
bool readsAs(const SemVer& version, const std::string& text) {
  const std::string twoParts = std::to_string(version.major) + "." + std::to_string(version.minor);
  return text == twoParts + "." + std::to_string(version.patch) ||
         (text == twoParts && version.patch == 0);
}

VersionId parseBound(const std::string& utf8) {
  VersionId version = parseVersion(utf8);
  if (!Precedence::of(version)) {
    throw std::invalid_argument(quoted(utf8) + " is not a semantic version");
  }
  return version;
}

}  // namespace

VersionId parseVersion(const std::string& utf8) {
  const std::u16string text = parseText(utf8);
  if (const auto version = SemVer::parse(text); version && readsAs(*version, utf8)) return *version;
  if (text.starts_with(unionPrefix)) {
    throw std::invalid_argument(quoted(utf8) + " begins as no version may");
  }
  return text;
}

SemVer parseSemVer(const std::string& utf8) {
  const auto version = SemVer::parse(parseText(utf8));
  if (!version) throw std::invalid_argument(quoted(utf8) + " is not a semantic version");
  if (!readsAs(*version, utf8)) {
    throw std::invalid_argument(quoted(utf8) + " has a component beyond 64 bits");
  }
  return *version;
}

std::u16string parseName(const std::string& utf8) {
  return parseText(utf8);
}

VersionRange parseRange(const std::string& lower, const std::string& upper) {
  const VersionBounds bounds{parseBound(lower), parseBound(upper)};
  // Not asked of the range: that of the greatest patch alone has the bounds of a reversed one.
  if (*Precedence::of(bounds.upper) < *Precedence::of(bounds.lower)) {
    throw std::invalid_argument("the range [" + lower + ", " + upper + ") is reversed");
  }
  return rangeBetween(bounds);
}

}  // namespace tarn::evolution::catalogue
