#include "catalogue/import/range_fitting.hpp"

#include <algorithm>
#include <cstddef>

#include "catalogue/import/foreign_range.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "catalogue/utf16.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::SemVerRange;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

using Versions = std::vector<KnownVersion>;
using Indices = std::vector<std::size_t>;

/// What stands for no upper bound, if it is above all versions: shorter than the greatest version.
constexpr SemVer openEnd{1'000'000'000, 0, 0};

bool admits(const VersionRange& range, const KnownVersion& version) {
  return admits(range, version.id, version.precedence());
}

bool admitExactly(const std::vector<VersionRange>& pieces, const Versions& versions,
                  const Indices& wanted) {
  auto next = wanted.begin();
  for (std::size_t i = 0; i < versions.size(); ++i) {
    const bool isWanted = next != wanted.end() && *next == i;
    if (isWanted) ++next;
    if (versions[i].isLeftOut) continue;
    const bool isAdmitted = std::any_of(pieces.begin(), pieces.end(), [&](const auto& piece) {
      return admits(piece, versions[i]);
    });
    if (isAdmitted != isWanted) return false;
  }
  return true;
}

/// What the version stands for, as a bound.
VersionId boundAt(const KnownVersion& version) {
  return version.equivalent ? VersionId(*version.equivalent) : version.id;
}

/// A bound above a version: the next release, or what comes next to a pre-release. Empty after the
/// greatest version, and for numbers beyond 64 bits.
std::optional<VersionId> boundAfter(const KnownVersion& version) {
  if (const auto semantic = version.precedence()->semVer()) {
    const auto next = nextPatch(*semantic);
    return next ? std::optional<VersionId>(*next) : std::nullopt;
  }
  const std::u16string text = version.id.getText().substr(0, version.id.getText().find(u'+'));
  return text.find(u'-') == text.npos ? std::nullopt : std::optional<VersionId>(text + u".0");
}

/// The versions with a precedence, ascending.
Indices inOrder(const Versions& versions) {
  Indices ascending;
  for (std::size_t i = 0; i < versions.size(); ++i) {
    if (!versions[i].isLeftOut && versions[i].precedence()) ascending.push_back(i);
  }
  std::stable_sort(ascending.begin(), ascending.end(), [&](std::size_t left, std::size_t right) {
    return *versions[left].precedence() < *versions[right].precedence();
  });
  return ascending;
}

/// An interval for each run of wanted versions that stand side by side, and, unless `areJoined`, up
/// to the next version that is known; joined, one from the first to the last. Wanted versions
/// without a precedence by themselves.
std::vector<VersionRange> runs(const Versions& versions, const Indices& wanted, bool areJoined) {
  const Indices ascending = inOrder(versions);
  const auto isWanted = [&](std::size_t index) {
    return std::binary_search(wanted.begin(), wanted.end(), index);
  };
  std::vector<VersionRange> pieces;
  for (auto next = ascending.begin();;) {
    const auto first = std::find_if(next, ascending.end(), isWanted);
    if (first == ascending.end()) break;
    next = std::find_if_not(first, ascending.end(), isWanted);
    if (areJoined) {
      while (std::find_if(next, ascending.end(), isWanted) != ascending.end()) ++next;
    }
    auto upper = next == ascending.end() || areJoined ? boundAfter(versions[*(next - 1)])
                                                      : boundAt(versions[*next]);
    if (!upper) upper = VersionId(widestRange().upper);
    pieces.push_back(rangeBetween({boundAt(versions[*first]), *std::move(upper)}));
  }
  for (const std::size_t index : wanted) {
    if (versions[index].precedence()) continue;
    pieces.push_back(VersionRange::singleVersion(versions[index].id));
  }
  return pieces;
}

/// The span without the pre-releases of its upper bound.
VersionRange withoutPrereleases(const SemVerRange& span) {
  if (span.upper == widestRange().upper) return span;
  return rangeBetween({span.lower, toUtf16(textOf(span.upper)) + u"-0"});
}

VersionRange shortened(const SemVerRange& span) {
  const bool isOpen = span.upper == widestRange().upper && span.lower < openEnd;
  return rangeBetween({span.lower, isOpen ? openEnd : span.upper});
}

/// The spans as they are, and the wanted ones that lie in none.
std::vector<VersionRange> spansAndOthers(const Versions& versions, const Indices& wanted,
                                         const std::vector<SemVerRange>& spans,
                                         VersionRange (*toRange)(const SemVerRange&)) {
  std::vector<VersionRange> pieces;
  pieces.reserve(spans.size());
  for (const SemVerRange& span : spans) pieces.push_back(toRange(span));
  for (const std::size_t index : wanted) {
    const bool isAdmitted =
        std::any_of(pieces.begin(), pieces.begin() + static_cast<std::ptrdiff_t>(spans.size()),
                    [&](const VersionRange& piece) { return admits(piece, versions[index]); });
    if (!isAdmitted) pieces.push_back(VersionRange::singleVersion(versions[index].id));
  }
  return pieces;
}

/// One version after the other.
std::vector<VersionRange> singles(const Versions& versions, const Indices& wanted) {
  std::vector<VersionRange> pieces;
  pieces.reserve(wanted.size());
  for (const std::size_t index : wanted) {
    pieces.push_back(VersionRange::singleVersion(versions[index].id));
  }
  return pieces;
}

}  // namespace

std::optional<VersionRange> fitRange(const Versions& versions, const Indices& wanted,
                                     const std::vector<SemVerRange>& spans) {
  std::vector<std::vector<VersionRange>> candidates;
  if (!spans.empty()) {
    const SemVerRange whole{spans.front().lower, spans.back().upper};
    candidates.push_back({shortened(whole)});
    candidates.push_back({whole});
    candidates.push_back({withoutPrereleases(whole)});
  }
  if (std::all_of(wanted.begin(), wanted.end(),
                  [&](std::size_t index) { return versions[index].precedence().has_value(); })) {
    candidates.push_back(runs(versions, wanted, true));
  }
  candidates.push_back(spansAndOthers(versions, wanted, spans, shortened));
  candidates.push_back(spansAndOthers(versions, wanted, spans, withoutPrereleases));
  candidates.push_back(runs(versions, wanted, false));
  candidates.push_back(singles(versions, wanted));
  for (const auto& pieces : candidates) {
    if (admitExactly(pieces, versions, wanted)) return unionOf(pieces);
  }
  return std::nullopt;
}

}  // namespace tarn::evolution::catalogue
