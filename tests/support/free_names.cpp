#include "support/free_names.hpp"

#include <algorithm>
#include <utility>

#include "platform/exception.hpp"

namespace test {

bool FreeNames::canArrive(const Names& names,
                          const std::function<bool(const Versions&)>& canBeHeld) {
  std::vector<Versions> met;
  const auto meet = [&](Versions versions) {
    if (!canBeHeld(versions)) return;
    if (std::find(met.begin(), met.end(), versions) == met.end()) met.push_back(versions);
  };
  for (const VersionBaseline& source : sources_) {
    Versions start;
    for (const auto& name : names) start.emplace(name, source.metamodels.at(name)->version);
    meet(std::move(start));
  }
  // The list grows on the way.
  for (std::size_t next = 0; next < met.size(); ++next) {  // NOLINT(modernize-loop-convert)
    const Versions held = met[next];
    if (hasArrived(held)) return true;
    moveOn(held, held.begin(), held, meet);
  }
  return false;
}

bool FreeNames::canBeHeld(const Versions& versions) {
  if (versions.empty()) return true;
  std::string text;
  for (const auto& [name, version] : versions) text += brief(name, version) + " ";
  const auto [known, isNew] = canBeHeld_.try_emplace(text, false);
  if (isNew) {
    canBeHeld_[text] = canBeCombined(versions);
  }
  return canBeHeld_[text];
}

bool FreeNames::canBeCombined(const Versions& versions) {
  try {
    const auto baselines = repository_.combine(Selection(versions.begin(), versions.end()));
    return std::any_of(baselines.begin(), baselines.end(),
                       [&](const auto& baseline) { return canBeCompleted(baseline); });
  } catch (const foundation::core::except::IMsgIDException&) {
    return false;  // cannot be linked
  }
}

bool FreeNames::canBeCompleted(const VersionBaseline& baseline) {
  Versions held;
  for (const auto& [name, linked] : baseline.metamodels) held.emplace(name, linked->version);
  for (const auto& [name, linked] : baseline.metamodels) {
    for (const auto& [required, range, isOptional] : repository_.getRequirements(*linked)) {
      if (isOptional || held.contains(required)) continue;
      std::vector<Metamodel> candidates;
      repository_.findMetamodels(required, range, candidates);
      return std::any_of(candidates.begin(), candidates.end(), [&](const Metamodel& candidate) {
        Versions more = held;
        more.emplace(candidate.name, candidate.version);
        return canBeHeld(more);
      });
    }
  }
  return true;
}

std::optional<FreeNames::Names> FreeNames::firstBlocked() {
  Names names;
  for (const auto& [name, linked] : sources_.front().metamodels) {
    const bool isHeldByAll =
        std::all_of(sources_.begin(), sources_.end(),
                    [&name = name](const auto& other) { return other.metamodels.contains(name); });
    if (isHeldByAll) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  std::optional<Names> first;
  for (std::size_t chosen = 0; chosen < (std::size_t{1} << names.size()); ++chosen) {
    Names some;
    for (std::size_t i = 0; i < names.size(); ++i) {
      if ((chosen >> i & 1) != 0) some.push_back(names[i]);
    }
    if (first && std::pair(first->size(), *first) < std::pair(some.size(), some)) continue;
    if (!canArrive(some, [&](const Versions& versions) { return canBeHeld(versions); })) {
      first = some;
    }
  }
  return first;
}

bool FreeNames::hasArrived(const Versions& held) const {
  return std::all_of(held.begin(), held.end(), [&](const auto& entry) {
    const auto goal = goals_.find(entry.first);
    return goal == goals_.end() || goal->second == entry.second;
  });
}

/// Every way to make hops of the names from `name` on.
template <class Meet>
void FreeNames::moveOn(const Versions& held, Versions::const_iterator name, const Versions& moved,
                       const Meet& meet) {
  if (name == held.end()) {
    meet(moved);
    return;
  }
  moveOn(held, std::next(name), moved, meet);
  const Metamodel before = *repository_.getMetamodel(name->first, name->second);
  for (const Hop& hop : hopsFrom(repository_, before)) {
    const Metamodel after = *repository_.getMetamodel(hop.name, hop.to);
    if (VersionRepository::areDirectionsInconsistent(direction_,
                                                     repository_.getDirection(before, after))) {
      continue;
    }
    Versions next = moved;
    next.insert_or_assign(name->first, after.version);
    moveOn(held, std::next(name), next, meet);
  }
}

}  // namespace test
