#include "catalogue/range_union.hpp"

#include <optional>
#include <stdexcept>
#include <string_view>

#include "catalogue/precedence.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/utf16.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::SemVerRange;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

constexpr std::u16string_view separator = u", ";

bool isSingle(const VersionRange& range) {
  return range.isSemVerRange() &&
         range == VersionRange::singleVersion(range.getSemVerRange().lower);
}

bool hasPrecedence(const VersionId& version) {
  return Precedence::of(version).has_value();
}

std::u16string boundsText(const VersionBounds& bounds) {
  return u"[" + toUtf16(textOf(bounds.lower)) + std::u16string(separator) +
         toUtf16(textOf(bounds.upper)) + u")";
}

std::u16string quotedText(const std::u16string& text) {
  std::u16string quoted = u"\"";
  for (const char16_t unit : text) {
    if (unit == u'"' || unit == u'\\') quoted += u'\\';
    quoted += unit;
  }
  return quoted + u'"';
}

/// Takes the pieces of a union's text off it, one after the other. All operations return nothing
/// for what is no union.
class UnionParser {
 public:
  explicit UnionParser(std::u16string_view text) : rest_(text) {}

  std::optional<std::vector<VersionRange>> parse() {
    if (!take(unionPrefix)) return std::nullopt;
    std::vector<VersionRange> pieces;
    do {
      auto piece = takePiece();
      if (!piece) return std::nullopt;
      pieces.push_back(*std::move(piece));
    } while (take(separator));
    if (!rest_.empty()) return std::nullopt;
    return pieces;
  }

  /// Those of a text that is a single piece with bounds.
  std::optional<VersionBounds> parseBounds() {
    if (!take(unionPrefix) || !take(u"[")) return std::nullopt;
    auto bounds = takeBounds();
    return rest_.empty() ? bounds : std::nullopt;
  }

 private:
  bool take(std::u16string_view beginning) {
    if (!rest_.starts_with(beginning)) return false;
    rest_.remove_prefix(beginning.size());
    return true;
  }

  std::optional<VersionRange> takePiece() {
    if (take(u"\"")) return takeText();
    if (!take(u"[")) {
      const auto version = takeVersion(u",");
      if (!version || !version->isSemVer()) return std::nullopt;
      return VersionRange::singleVersion(*version);
    }
    const auto bounds = takeBounds();
    return bounds ? std::optional(rangeBetween(*bounds)) : std::nullopt;
  }

  /// What follows the bracket.
  std::optional<VersionBounds> takeBounds() {
    auto lower = takeVersion(u",");
    if (!lower || !take(separator)) return std::nullopt;
    auto upper = takeVersion(u")");
    if (!upper || !take(u")")) return std::nullopt;
    return VersionBounds{*std::move(lower), *std::move(upper)};
  }

  std::optional<VersionRange> takeText() {
    std::u16string text;
    for (std::size_t i = 0; i < rest_.size(); ++i) {
      if (rest_[i] == u'"') {
        rest_.remove_prefix(i + 1);
        return VersionRange(std::move(text));
      }
      if (rest_[i] == u'\\' && ++i == rest_.size()) break;
      text += rest_[i];
    }
    return std::nullopt;
  }

  std::optional<VersionId> takeVersion(std::u16string_view end) {
    std::u16string text(rest_.substr(0, rest_.find(end)));
    rest_.remove_prefix(text.size());
    const auto precedence = Precedence::read(text);
    if (!precedence) return std::nullopt;
    if (const auto version = SemVer::parse(text); version && precedence->semVer()) return *version;
    return text;
  }

  std::u16string_view rest_;
};

std::optional<std::vector<VersionRange>> findPieces(const VersionRange& range) {
  if (range.isSemVerRange() || !range.getText().starts_with(unionPrefix)) return std::nullopt;
  return UnionParser(range.getText()).parse();
}

}  // namespace

VersionRange unionOf(const std::vector<VersionRange>& ranges) {
  if (ranges.empty()) throw std::invalid_argument("a union of no ranges admits nothing");
  if (ranges.size() == 1) return ranges.front();
  std::u16string text(unionPrefix);
  for (const VersionRange& range : ranges) {
    if (text.size() > unionPrefix.size()) text += separator;
    if (const auto bounds = boundsOf(range)) {
      text += boundsText(*bounds);
    } else if (!range.isSemVerRange()) {
      text += quotedText(range.getText());
    } else {
      text += toUtf16(textOf(range.getSemVerRange().lower));
    }
  }
  return text;
}

std::vector<VersionRange> piecesOf(const VersionRange& range) {
  if (auto pieces = findPieces(range)) return *std::move(pieces);
  return {range};
}

bool isUnion(const VersionRange& range) {
  const auto pieces = findPieces(range);
  return pieces && (pieces->size() > 1 || pieces->front() != range);
}

VersionRange rangeBetween(const VersionBounds& bounds) {
  const auto& [lower, upper] = bounds;
  if (!hasPrecedence(lower) || !hasPrecedence(upper)) {
    throw std::invalid_argument("only versions with a precedence bound a range");
  }
  if (lower.isSemVer() && upper.isSemVer()) {
    return SemVerRange{lower.getSemVer(), upper.getSemVer()};
  }
  return std::u16string(unionPrefix) + boundsText(bounds);
}

std::optional<VersionBounds> boundsOf(const VersionRange& range) {
  if (range.isSemVerRange()) {
    const auto& [lower, upper] = range.getSemVerRange();
    return isSingle(range) ? std::nullopt : std::optional(VersionBounds{lower, upper});
  }
  return UnionParser(range.getText()).parseBounds();
}

}  // namespace tarn::evolution::catalogue
