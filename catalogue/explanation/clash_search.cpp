// A smallest set of parties that cannot stand together: two, if any two cannot; otherwise by
// deletion, leaving out party by party as long as the others still cannot. That suffices, for more
// parties disagree as well. See docs/catalogue.md.

#include "catalogue/explanation/clash_search.hpp"

#include <algorithm>
#include <utility>

#include "catalogue/explanation/contested_name.hpp"
#include "catalogue/explanation/scattered_clash.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::optional<std::vector<Candidates>> findTwoParties(const std::vector<Candidates>& candidates) {
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    for (std::size_t j = i + 1; j < candidates.size(); ++j) {
      std::vector<Candidates> two{candidates[i], candidates[j]};
      if (!canStandTogether(two)) return two;
    }
  }
  return std::nullopt;
}

std::vector<Candidates> findParties(const std::vector<Candidates>& candidates) {
  if (auto two = findTwoParties(candidates)) return *std::move(two);
  std::vector<Candidates> parties = candidates;
  for (std::size_t i = 0; i < parties.size();) {
    std::vector<Candidates> others = parties;
    others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
    if (canStandTogether(others)) {
      ++i;
    } else {
      parties = std::move(others);
    }
  }
  return parties;
}

/// By ascending name; none when the candidates can stand together.
std::vector<Candidates> findSortedParties(const std::vector<Candidates>& candidates) {
  if (canStandTogether(candidates)) return {};
  std::vector<Candidates> parties = findParties(candidates);
  std::sort(parties.begin(), parties.end(),
            [](const auto& left, const auto& right) { return left.name < right.name; });
  return parties;
}

std::vector<std::u16string> namesOf(const std::vector<Candidates>& parties) {
  std::vector<std::u16string> names;
  names.reserve(parties.size());
  for (const Candidates& party : parties) names.push_back(party.name);
  return names;
}

}  // namespace

std::optional<Clash> findClash(pathfinder::VersionRepository& repository,
                               const std::vector<Candidates>& candidates) {
  const std::vector<Candidates> parties = findSortedParties(candidates);
  if (parties.empty()) return std::nullopt;
  if (auto contested = findContested(repository, parties)) {
    return Clash{namesOf(parties), std::move(contested->name), std::move(contested->requirements)};
  }
  return Clash{namesOf(parties), {}, findScatteredRequirements(repository, parties)};
}

std::vector<std::u16string> findClashingNames(const std::vector<Candidates>& candidates) {
  return namesOf(findSortedParties(candidates));
}

}  // namespace tarn::evolution::catalogue
