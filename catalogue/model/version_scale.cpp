#include "catalogue/version_scale.hpp"

#include <algorithm>
#include <utility>

#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "catalogue/utf16.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

bool isSemVer(const Precedence& precedence) {
  return precedence.semVer().has_value();
}

}  // namespace

VersionScale::VersionScale(std::vector<Precedence> precedences) {
  if (std::all_of(precedences.begin(), precedences.end(), isSemVer)) return;
  std::sort(precedences.begin(), precedences.end());
  precedences.erase(std::unique(precedences.begin(), precedences.end()), precedences.end());
  steps_ = std::move(precedences);
}

SemVer VersionScale::equivalent(const Precedence& precedence) const {
  if (!isOwn()) return *precedence.semVer();
  const auto step = std::lower_bound(steps_.begin(), steps_.end(), precedence);
  return {0, 0, static_cast<std::uint64_t>(step - steps_.begin())};
}

VersionId VersionScale::shown(const VersionId& version) const {
  if (!isOwn() || !version.isSemVer()) return version;
  return toUtf16(textOf(version));
}

VersionId VersionScale::meant(const VersionId& version) const {
  if (!isOwn() || version.isSemVer()) return version;
  const auto semantic = SemVer::parse(version.getText());
  if (!semantic || shown(VersionId(*semantic)) != version) return version;
  return *semantic;
}

pathfinder::Metamodel VersionScale::shown(pathfinder::Metamodel metamodel) const {
  if (isOwn()) metamodel.version = shown(metamodel.version);
  return metamodel;
}

pathfinder::Hop VersionScale::shown(pathfinder::Hop hop) const {
  if (isOwn()) {
    hop.from = shown(hop.from);
    hop.to = shown(hop.to);
  }
  return hop;
}

pathfinder::Hop VersionScale::meant(pathfinder::Hop hop) const {
  hop.from = meant(hop.from);
  hop.to = meant(hop.to);
  return hop;
}

VersionRange VersionScale::meant(const VersionRange& range) const {
  if (!isOwn() || range.isSemVerRange()) return range;
  const auto single = findSingleVersion(range);
  return single ? VersionRange::singleVersion(meant(*single)) : range;
}

}  // namespace tarn::evolution::catalogue
