#include "catalogue/import/range_fitting.hpp"

#include <algorithm>
#include <cstddef>

#include "catalogue/import/foreign_range.hpp"
#include "catalogue/range_union.hpp"

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
  if (range.includes(version.id)) return true;
  return version.equivalent && range.includes(VersionId(*version.equivalent));
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

/// From the smallest to the greatest of the wanted; empty when one has no place or no next one.
std::optional<SemVerRange> hullOf(const Versions& versions, const Indices& wanted) {
  std::optional<SemVerRange> hull;
  for (const std::size_t index : wanted) {
    const std::optional<SemVer> version = versions[index].semVer();
    const std::optional<SemVer> after = version ? nextPatch(*version) : std::nullopt;
    if (!after) return std::nullopt;
    if (!hull) hull = SemVerRange{*version, *after};
    hull->lower = std::min(hull->lower, *version);
    hull->upper = std::max(hull->upper, *after);
  }
  return hull;
}

VersionRange shortened(SemVerRange span) {
  if (span.upper == widestRange().upper && span.lower < openEnd) span.upper = openEnd;
  return span;
}

/// The spans as they are, and the wanted ones that lie in none.
std::vector<VersionRange> spansAndOthers(const Versions& versions, const Indices& wanted,
                                         const std::vector<SemVerRange>& spans) {
  std::vector<VersionRange> pieces;
  pieces.reserve(spans.size());
  for (const SemVerRange& span : spans) pieces.push_back(shortened(span));
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
    candidates.push_back({shortened({spans.front().lower, spans.back().upper})});
    candidates.push_back({SemVerRange{spans.front().lower, spans.back().upper}});
  }
  if (const auto hull = hullOf(versions, wanted)) candidates.push_back({*hull});
  candidates.push_back(spansAndOthers(versions, wanted, spans));
  candidates.push_back(singles(versions, wanted));
  for (const auto& pieces : candidates) {
    if (admitExactly(pieces, versions, wanted)) return unionOf(pieces);
  }
  return std::nullopt;
}

}  // namespace tarn::evolution::catalogue
