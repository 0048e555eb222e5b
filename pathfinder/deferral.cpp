#include "pathfinder/deferral.hpp"

#include <algorithm>

#include "pathfinder/step_weight.hpp"

namespace tarn::evolution::pathfinder {

Deferral::Deferral(const SearchSpace& space, const Coexistence& coexistence,
                   const IncomingHops& incoming, const std::vector<VersionSelection>& sources)
    : space_(space),
      coexistence_(coexistence),
      incoming_(incoming),
      isEveryNameHeld_(std::none_of(
          space.names.begin(), space.names.end(),
          [](const SearchSpace::Name& name) { return name.absent != SearchSpace::none; })),
      isInSource_(space.versions.size()) {
  if (!isEveryNameHeld_) return;
  for (const VersionSelection& source : sources) {
    for (const VersionIndex version : source) isInSource_[version] = true;
  }
  for (NameIndex name = 0; name < space.names.size(); ++name) findWaysInto(name);
}

void Deferral::findWaysInto(NameIndex index) {
  const SearchSpace::Name& name = space_.names[index];
  const std::size_t start = waysInto_.size();
  if (coexistence_.neighbours(index).empty()) {
    waysStart_.resize(name.end, start);  // nobody asks
    return;
  }
  const std::size_t words = (name.end - name.first + 63) / 64;
  const auto ways = [&](VersionIndex version) { return &waysInto_[waysStart_[version]]; };
  waysInto_.resize(start + words * (name.end - name.first));
  for (VersionIndex version = name.first; version < name.end; ++version) {
    const VersionIndex rank = version - name.first;
    waysStart_.push_back(start + rank * words);
    ways(version)[rank / 64] |= VersionBits{1} << (rank % 64);
  }
  for (bool changed = true; changed;) {
    changed = false;
    for (VersionIndex version = name.first; version < name.end; ++version) {
      for (const IncomingHop& hop : incoming_.into(version)) {
        for (std::size_t word = 0; word < words; ++word) {
          const VersionBits both = ways(version)[word] | ways(hop.before)[word];
          changed |= both != ways(version)[word];
          ways(version)[word] = both;
        }
      }
    }
  }
}

Deferral::Stay Deferral::stayAt(VersionIndex version, const VersionSelection& after) const {
  if (!isEveryNameHeld_ || isInSource_[version]) return Stay::Always;
  Stay stay = Stay::Never;
  for (const IncomingHop& hop : incoming_.into(version)) {
    if (!canWait(hop, after)) return Stay::Always;
    if (hop.weight == hopWeight(false)) stay = Stay::WithoutOrdinaryHop;
  }
  return stay;
}

/// Whether the version that the hop leaves can stand beside all that the version which it leads to
/// can, as far as it still matters before `after`.
bool Deferral::canWait(const IncomingHop& hop, const VersionSelection& after) const {
  const auto& neighbours = coexistence_.neighbours(space_.versions[hop.target].name);
  for (std::size_t i = 0; i < neighbours.size(); ++i) {
    const VersionBits* besideTarget = coexistence_.row(hop.target, i);
    const VersionBits* besideBefore = coexistence_.row(hop.before, i);
    const VersionBits* held = &waysInto_[waysStart_[after[neighbours[i]]]];
    for (std::size_t word = 0; word < coexistence_.words(neighbours[i]); ++word) {
      if ((besideTarget[word] & held[word] & ~besideBefore[word]) != 0) return false;
    }
  }
  return true;
}

}  // namespace tarn::evolution::pathfinder
