#include "pathfinder/semver.hpp"

#include <ostream>
#include <tuple>

namespace tarn::evolution::pathfinder {

namespace {

bool isDigit(char16_t unit) {
  return unit >= u'0' && unit <= u'9';
}

bool endsComponent(char16_t unit) {
  return unit == u'\0' || unit == u'.';
}

/// Reads one component and leaves `position` on the unit after it, or returns nothing.
std::optional<std::uint64_t> parseVersionComponent(const char16_t*& position) {
  if (!isDigit(*position)) return std::nullopt;
  std::uint64_t value = 0;
  if (*position == u'0') {
    ++position;
  } else {
    for (; isDigit(*position); ++position) {
      value = value * 10 + static_cast<std::uint64_t>(*position - u'0');
    }
  }
  if (!endsComponent(*position)) return std::nullopt;
  return value;
}

}  // namespace

std::optional<SemVer> SemVer::parse(const std::u16string& text) {
  const char16_t* position = text.c_str();
  const auto major = parseVersionComponent(position);
  if (!major || *position == u'\0') return std::nullopt;
  const auto minor = parseVersionComponent(++position);
  if (!minor) return std::nullopt;
  if (*position == u'\0') return SemVer{*major, *minor, 0};
  const auto patch = parseVersionComponent(++position);
  if (!patch || *position != u'\0') return std::nullopt;
  return SemVer{*major, *minor, *patch};
}

bool SemVer::operator==(const SemVer&) const = default;

bool SemVer::operator<(const SemVer& other) const {
  return std::tie(major, minor, patch) < std::tie(other.major, other.minor, other.patch);
}

std::ostream& operator<<(std::ostream& out, const SemVer& version) {
  return out << version.major << "." << version.minor << "." << version.patch;
}

bool SemVerRange::includes(const SemVer& version) const {
  return !(version < lower) && version < upper;
}

void SemVerRange::intersect(const SemVerRange& other) {
  if (lower < other.lower) lower = other.lower;
  if (other.upper < upper) upper = other.upper;
  if (upper < lower) upper = lower;
}

SemVerRange SemVerRange::intersection(const SemVerRange& other) const {
  SemVerRange result = *this;
  result.intersect(other);
  return result;
}

bool SemVerRange::operator==(const SemVerRange&) const = default;

}  // namespace tarn::evolution::pathfinder
