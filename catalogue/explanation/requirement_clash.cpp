// A refutation. Names are variables, whose values are the versions that they may have. A version is
// left out when all versions that are left of another name exclude it or are excluded by it (arc
// consistency), and a name that all versions left of another one need comes in, with the versions
// that these admit. Where versions are left of every name, those of one name are tried one by one.
//
// What was left out knows the name because of which it was. So one can go back from the name of
// which nothing is left, version by version, to what is given: what excludes a version beside each
// version of that name, or else why that version was left out before.

#include "catalogue/explanation/requirement_clash.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "catalogue/model/admitted_versions.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Metamodel;
using pathfinder::PeerRequirement;

namespace {

constexpr std::size_t mostWork = 2000;  // names of all that was tried

/// The first requirement of a metamodel on the other's name that excludes it.
std::optional<PeerRequirement> excluding(pathfinder::VersionRepository& repository,
                                         const Metamodel& metamodel, const Metamodel& other) {
  for (PeerRequirement& requirement : repository.getRequirements(metamodel)) {
    if (requirement.name != other.name) continue;
    if (isAdmitted(repository, other.name, requirement.range, other.version)) continue;
    return std::move(requirement);
  }
  return std::nullopt;
}

NamedVersion named(const Metamodel& metamodel) {
  return {metamodel.name, metamodel.version};
}

Requirement itself(const Metamodel& metamodel) {
  return {{named(metamodel)}, metamodel.name, std::nullopt};
}

}  // namespace

class Refutation {
 public:
  Refutation(RequirementClashes& clashes, const Given& given) : clashes_(clashes), given_(given) {}

  std::optional<Clash> run() {
    State state;
    for (const auto& [name, versions] : given_) {
      for (const Metamodel& version : versions) add(version, state[name]);
    }
    Reasons reasons;
    if (!refute(std::move(state), reasons)) return std::nullopt;
    return clashOf(reasons);
  }

 private:
  using Need = RequirementClashes::Need;
  using Name = std::u16string;

  struct Variable {
    std::vector<const Metamodel*> versions;
    std::vector<std::optional<Name>> leftOutBy;  ///< of each; the empty name: another one was tried
    Name broughtBy;                              ///< empty: it is given
    std::vector<std::size_t> bringing;           ///< the versions that were left of that one

    bool isLeft(std::size_t version) const { return !leftOutBy[version]; }
    auto countLeft() const { return std::count(leftOutBy.begin(), leftOutBy.end(), std::nullopt); }
  };
  using State = std::map<Name, Variable>;

  struct Reasons {
    std::vector<std::pair<const Metamodel*, const Need*>> needs;
    std::set<Name> given;    ///< of which no version will do
    std::set<Name> present;  ///< those and others of which that is so
    std::set<Name> tried;    ///< of which one version only was looked at
    std::set<std::pair<Name, std::size_t>> leftOut;
    Name contested;

    void add(const Metamodel& metamodel, const Need& need) {
      const bool isNew = std::none_of(needs.begin(), needs.end(),
                                      [&](const auto& known) { return known.second == &need; });
      if (isNew) needs.emplace_back(&metamodel, &need);
    }
    void add(const Reasons& part) {
      for (const auto& [metamodel, need] : part.needs) add(*metamodel, *need);
      given.insert(part.given.begin(), part.given.end());
      tried.insert(part.tried.begin(), part.tried.end());
    }
  };

  static void add(const Metamodel& metamodel, Variable& variable) {
    const auto& known = variable.versions;
    const bool isNew = std::none_of(known.begin(), known.end(), [&](const Metamodel* other) {
      return other->version == metamodel.version;
    });
    if (!isNew) return;
    variable.versions.push_back(&metamodel);
    variable.leftOutBy.emplace_back();
  }

  /// Whether nothing can stand together, and why.
  bool refute(State state, Reasons& reasons) {
    if (const auto empty = narrowAll(state)) {
      reasons.contested = *empty;
      explainLeftOut(state, *empty, reasons);
      return true;
    }
    const auto open = std::find_if(state.begin(), state.end(),
                                   [](const auto& entry) { return entry.second.countLeft() > 1; });
    if (open == state.end()) return false;
    const auto& [name, variable] = *open;
    for (std::size_t version = 0; version < variable.versions.size(); ++version) {
      if (!variable.isLeft(version)) continue;
      if ((work_ += state.size()) > mostWork) return false;
      Reasons part;
      if (!refute(onlyWith(state, name, version), part)) return false;
      if (part.tried.erase(name) == 0) {
        reasons = std::move(part);
        return true;
      }
      reasons.add(part);
    }
    explainLeftOut(state, name, reasons);
    return true;
  }

  static State onlyWith(State state, const Name& name, std::size_t version) {
    auto& leftOutBy = state.at(name).leftOutBy;
    for (std::size_t other = 0; other < leftOutBy.size(); ++other) {
      if (other != version && !leftOutBy[other]) leftOutBy[other] = Name();
    }
    return state;
  }

  /// The first name of which nothing is left, if there is one.
  std::optional<Name> narrowAll(State& state) {
    for (bool isChanged = true; isChanged;) {
      isChanged = false;
      for (auto& [name, variable] : state) {
        for (const Name& other : namesNeeded(variable)) {
          const auto found = state.find(other);
          if (found == state.end()) continue;
          isChanged = narrow(variable, other, found->second) || isChanged;
          isChanged = narrow(found->second, name, variable) || isChanged;
          if (found->second.countLeft() == 0) return other;
        }
        if (variable.countLeft() == 0) return name;
        if (auto brought = bringIn(name, variable, state)) {
          if (state.at(*brought).versions.empty()) return brought;
          isChanged = true;
        }
      }
    }
    return std::nullopt;
  }

  std::set<Name> namesNeeded(const Variable& variable) {
    std::set<Name> result;
    for (std::size_t version = 0; version < variable.versions.size(); ++version) {
      if (!variable.isLeft(version)) continue;
      for (const Need& need : clashes_.needsOf(*variable.versions[version])) {
        result.insert(need.name);
      }
    }
    return result;
  }

  /// Leaves out what no version left of another name can stand beside; whether there was any.
  bool narrow(Variable& variable, const Name& otherName, const Variable& other) {
    bool isChanged = false;
    for (std::size_t version = 0; version < variable.versions.size(); ++version) {
      if (!variable.isLeft(version) || fits(*variable.versions[version], other)) continue;
      variable.leftOutBy[version] = otherName;
      isChanged = true;
    }
    return isChanged;
  }

  bool fits(const Metamodel& metamodel, const Variable& other) {
    for (std::size_t version = 0; version < other.versions.size(); ++version) {
      const Metamodel& beside = *other.versions[version];
      const bool isOther = metamodel.name == beside.name && metamodel.version != beside.version;
      if (!isOther && other.isLeft(version) && excluding(metamodel, beside) == nullptr &&
          excluding(beside, metamodel) == nullptr) {
        return true;
      }
    }
    return false;
  }

  /// The need of a metamodel that the other one does not meet; null when there is none.
  const Need* excluding(const Metamodel& metamodel, const Metamodel& other) {
    for (const Need& need : clashes_.needsOf(metamodel)) {
      if (need.name == other.name && !need.admitted.contains(other.version)) return &need;
    }
    return nullptr;
  }

  /// A name that all versions left of another one need, if there is one that is not there yet.
  std::optional<Name> bringIn(const Name& name, const Variable& variable, State& state) {
    for (const Name& needed : namesNeeded(variable)) {
      if (state.contains(needed)) continue;
      Variable brought{{}, {}, name, {}};
      bool isNeededByAll = true;
      for (std::size_t version = 0; version < variable.versions.size(); ++version) {
        if (!variable.isLeft(version)) continue;
        brought.bringing.push_back(version);
        const Need* const need = bringing(*variable.versions[version], needed);
        isNeededByAll = isNeededByAll && need != nullptr;
        if (need == nullptr) break;
        for (const Metamodel& candidate : need->candidates) add(candidate, brought);
      }
      if (!isNeededByAll) continue;
      state.emplace(needed, std::move(brought));
      return needed;
    }
    return std::nullopt;
  }

  const Need* bringing(const Metamodel& metamodel, const Name& name) {
    for (const Need& need : clashes_.needsOf(metamodel)) {
      if (need.brings && need.name == name) return &need;
    }
    return nullptr;
  }

  /// Why none of the versions that were left out will do.
  void explainLeftOut(const State& state, const Name& name, Reasons& reasons) {
    explainPresence(state, name, reasons);
    for (std::size_t version = 0; version < state.at(name).versions.size(); ++version) {
      explain(state, name, version, reasons);
    }
  }

  void explainPresence(const State& state, const Name& name, Reasons& reasons) {
    if (!reasons.present.insert(name).second) return;
    const Variable& variable = state.at(name);
    if (variable.broughtBy.empty()) {
      reasons.given.insert(name);
      return;
    }
    explainPresence(state, variable.broughtBy, reasons);
    const auto& needing = state.at(variable.broughtBy).versions;
    for (std::size_t version = 0; version < needing.size(); ++version) {
      if (std::count(variable.bringing.begin(), variable.bringing.end(), version) == 0) {
        explain(state, variable.broughtBy, version, reasons);
      } else {
        reasons.add(*needing[version], *bringing(*needing[version], name));
      }
    }
  }

  void explain(const State& state, const Name& name, std::size_t version, Reasons& reasons) {
    const auto& by = state.at(name).leftOutBy[version];
    if (!by || !reasons.leftOut.emplace(name, version).second) return;
    if (by->empty()) {
      reasons.tried.insert(name);
      return;
    }
    explainPresence(state, *by, reasons);
    const Metamodel& metamodel = *state.at(name).versions[version];
    const auto& others = state.at(*by).versions;
    for (std::size_t other = 0; other < others.size(); ++other) {
      if (*by == name && other != version) continue;
      if (const Need* need = excluding(metamodel, *others[other])) {
        reasons.add(metamodel, *need);
      } else if (const Need* its = excluding(*others[other], metamodel)) {
        reasons.add(*others[other], *its);
      } else {
        explain(state, *by, other, reasons);
      }
    }
  }

  /// In the order in which one comes from what is given to the rest.
  Clash clashOf(const Reasons& reasons) const {
    Clash clash{{reasons.given.begin(), reasons.given.end()}, reasons.contested, {}};
    std::set<Name> known = reasons.given;
    auto left = reasons.needs;
    const auto isNext = [&](const auto& need) { return known.contains(need.first->name); };
    for (auto next = left.begin(); !left.empty(); left.erase(next)) {
      next = std::find_if(left.begin(), left.end(), isNext);
      if (next == left.end()) next = left.begin();
      known.insert(next->second->name);
      clash.requirements.push_back({{named(*next->first)},
                                    next->second->name,
                                    next->second->range,
                                    next->second->isOptional});
    }
    for (const Name& name : reasons.given) addVersionsOf(name, clash);
    return clash;
  }

  /// Of a name of which every version has a requirement in the clash, these tell them.
  void addVersionsOf(const Name& name, Clash& clash) const {
    const auto& told = clash.requirements;
    const auto& versions = given_.at(name);
    const bool areTold = std::all_of(versions.begin(), versions.end(), [&](const Metamodel& each) {
      return std::any_of(told.begin(), told.end(), [&](const Requirement& requirement) {
        return requirement.chain.front() == named(each);
      });
    });
    if (areTold) return;
    for (const Metamodel& version : versions) clash.requirements.push_back(itself(version));
  }

  RequirementClashes& clashes_;
  const Given& given_;
  std::size_t work_ = 0;
};

std::optional<Clash> RequirementClashes::find(const Given& given) {
  return Refutation(*this, given).run();
}

/// Of several dependencies on one name linking goes by the first.
const std::vector<RequirementClashes::Need>& RequirementClashes::needsOf(
    const Metamodel& metamodel) {
  const auto [found, isNew] = needs_.try_emplace(metamodel);
  if (!isNew) return found->second;
  std::vector<Need> needs;
  std::set<std::u16string> linked{metamodel.name};
  for (const auto& [name, range] : metamodel.dependencies) {
    if (linked.insert(name).second) needs.push_back(resolve({name, range, false}, true));
  }
  for (PeerRequirement& required : repository_.getRequirements(metamodel)) {
    const bool brings = presence_ == OfAllNeeds && !required.isOptional;
    needs.push_back(resolve(std::move(required), brings));
  }
  return found->second = std::move(needs);
}

RequirementClashes::Need RequirementClashes::resolve(PeerRequirement required, bool brings) {
  Need need{
      std::move(required.name), std::move(required.range), required.isOptional, brings, {}, {}};
  repository_.findMetamodels(need.name, need.range, need.candidates);
  for (const Metamodel& candidate : need.candidates) need.admitted.insert(candidate.version);
  return need;
}

std::optional<Clash> findExcluded(pathfinder::VersionRepository& repository,
                                  const std::map<std::u16string, const Metamodel*>& held) {
  for (const auto& [name, metamodel] : held) {
    for (const auto& [otherName, other] : held) {
      if (name == otherName) continue;
      const auto requirement = excluding(repository, *metamodel, *other);
      if (!requirement) continue;
      return Clash{
          {std::min(name, otherName), std::max(name, otherName)},
          otherName,
          {{{named(*metamodel)}, requirement->name, requirement->range, requirement->isOptional},
           itself(*other)}};
    }
  }
  return std::nullopt;
}

}  // namespace tarn::evolution::catalogue
