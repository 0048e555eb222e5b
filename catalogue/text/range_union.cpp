#include "catalogue/range_union.hpp"

#include <optional>
#include <stdexcept>
#include <string_view>

#include "catalogue/text/printed_text.hpp"
#include "catalogue/utf16.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::SemVerRange;
using pathfinder::VersionRange;

namespace {

constexpr std::u16string_view separator = u", ";

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
      return version ? std::optional(VersionRange::singleVersion(*version)) : std::nullopt;
    }
    const auto lower = takeVersion(u",");
    if (!lower || !take(separator)) return std::nullopt;
    const auto upper = takeVersion(u")");
    if (!upper || !take(u")")) return std::nullopt;
    return VersionRange(SemVerRange{*lower, *upper});
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

  std::optional<SemVer> takeVersion(std::u16string_view end) {
    const std::u16string text(rest_.substr(0, rest_.find(end)));
    rest_.remove_prefix(text.size());
    return SemVer::parse(text);
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
    if (!range.isSemVerRange()) {
      text += quotedText(range.getText());
    } else if (range == VersionRange::singleVersion(range.getSemVerRange().lower)) {
      text += toUtf16(textOf(range.getSemVerRange().lower));
    } else {
      text += toUtf16(textOf(range));
    }
  }
  return text;
}

std::vector<VersionRange> piecesOf(const VersionRange& range) {
  if (auto pieces = findPieces(range)) return *std::move(pieces);
  return {range};
}

bool isUnion(const VersionRange& range) {
  return findPieces(range).has_value();
}

}  // namespace tarn::evolution::catalogue
