// Semi-join by one decided link: of a version with many variants, those stay that link the decided
// variant of the name which leaves the fewest. Indices from a linked variant to those that link it
// are built when they are first needed.

#include "pathfinder/planning/variant_filter.hpp"

#include <algorithm>

namespace tarn::evolution::pathfinder {

namespace {

/// As many candidates are compared one by one.
constexpr std::size_t fewCandidates = 8;

}  // namespace

std::size_t VariantFilter::ByLink::count(VariantIndex variant) const {
  const auto found = linking.find(variant);
  return linkingNone.size() + (found == linking.end() ? 0 : found->second.size());
}

void VariantFilter::narrow(std::vector<OpenVersion>& open) {
  const auto hasMany = [](const OpenVersion& one) {
    return one.candidates->size() > fewCandidates;
  };
  if (std::none_of(open.begin(), open.end(), hasMany)) return;
  std::vector<SearchSpace::Link> decided;
  for (const OpenVersion& one : open) {
    if (one.candidates->size() != 1) continue;
    const SearchSpace::Version& version = space_.versions[one.version];
    decided.push_back({version.name, version.firstVariant});
  }
  for (OpenVersion& one : open) {
    if (hasMany(one)) narrow(one, decided);
  }
}

const VariantFilter::Index& VariantFilter::indexOf(VersionIndex version) {
  const auto [entry, isNew] = indices_.try_emplace(version);
  Index& index = entry->second;
  if (!isNew) return index;
  const auto variants = space_.variantsOf(version);
  for (const SearchSpace::Variant& variant : variants) {
    for (const SearchSpace::Link& link : variant.closure) index.try_emplace(link.name);
  }
  for (auto& [name, byLink] : index) {
    for (std::uint32_t place = 0; place < variants.size(); ++place) {
      const VariantIndex linked = variants[place].heldUnder(name);
      const bool isLinked = linked != SearchSpace::none;
      (isLinked ? byLink.linking[linked] : byLink.linkingNone).push_back(place);
    }
  }
  return index;
}

/// Keeps the candidates that agree with the decided name which leaves the fewest.
void VariantFilter::narrow(OpenVersion& open, const std::vector<SearchSpace::Link>& decided) {
  const Index& index = indexOf(open.version);
  const ByLink* best = nullptr;
  VariantIndex held = SearchSpace::none;
  for (const SearchSpace::Link& link : decided) {
    const auto byLink = index.find(link.name);
    if (byLink == index.end()) continue;
    if (best != nullptr && best->count(held) <= byLink->second.count(link.variant)) continue;
    best = &byLink->second;
    held = link.variant;
  }
  if (best == nullptr) return;
  std::vector<std::uint32_t> places = best->linkingNone;
  if (const auto linking = best->linking.find(held); linking != best->linking.end()) {
    places.insert(places.end(), linking->second.begin(), linking->second.end());
  }
  std::sort(places.begin(), places.end());
  for (const std::uint32_t place : places) open.left.push_back((*open.candidates)[place]);
  open.candidates = &open.left;
}

}  // namespace tarn::evolution::pathfinder
