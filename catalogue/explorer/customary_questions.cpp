#include "catalogue/explorer/customary_questions.hpp"

#include <algorithm>

#include "catalogue/model/numbered_versions.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// Where hops up lead from each version, by number.
std::vector<std::vector<std::size_t>> listHopsUp(BrowsableRepository& repository,
                                                 const NumberedVersions& versions) {
  std::vector<std::vector<std::size_t>> up(versions.size());
  for (const pathfinder::Hop& hop : repository.listHops(versions.name())) {
    const auto from = versions.find(hop.from);
    const auto to = versions.findMeant(hop.to);
    if (from && to && *from < *to) up[*from].push_back(*to);
  }
  return up;
}

/// Which versions can be reached from one; hops go up, so one pass in order suffices.
std::vector<bool> reachFrom(std::size_t start, const std::vector<std::vector<std::size_t>>& up) {
  std::vector<bool> isReached(up.size());
  isReached[start] = true;
  for (std::size_t i = start; i < up.size(); ++i) {
    if (!isReached[i]) continue;
    for (const std::size_t to : up[i]) isReached[to] = true;
  }
  return isReached;
}

}  // namespace

std::optional<CustomaryQuestion> findCustomaryQuestion(BrowsableRepository& repository,
                                                       const std::u16string& name,
                                                       std::size_t mostTargets) {
  const NumberedVersions versions(repository, name);
  const auto up = listHopsUp(repository, versions);
  const auto oldest =
      std::find_if(up.begin(), up.end(), [](const auto& targets) { return !targets.empty(); });
  if (oldest == up.end()) return std::nullopt;
  const auto start = static_cast<std::size_t>(oldest - up.begin());
  const auto isReached = reachFrom(start, up);
  CustomaryQuestion question{name, versions[start].descriptor.version, {}};
  for (std::size_t i = versions.size(); --i > start && question.newest.size() < mostTargets;) {
    if (isReached[i]) question.newest.push_back(versions[i].descriptor.version);
  }
  return question;
}

}  // namespace tarn::evolution::catalogue
