// Where every name keeps one of two versions, the one before or the one after the step, each
// requirement between two of them says "if this one moves, so does that one". Such implications
// make a directed graph, whose strongly connected components move at once, and whose topological
// order is one in which they could move one after the other.
#include "catalogue/picture/step_ties.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "catalogue/model/admitted_versions.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::BaselineHop;
using pathfinder::LinkedMetamodel;
using pathfinder::Metamodel;
using pathfinder::VersionBaseline;
using pathfinder::VersionId;
using pathfinder::VersionRepository;

namespace {

const LinkedMetamodel* findHeld(const VersionBaseline& baseline, const std::u16string& name) {
  const auto held = baseline.metamodels.find(name);
  return held == baseline.metamodels.end() ? nullptr : held->second.get();
}

/// One metamodel's part in a step.
struct Part {
  const LinkedMetamodel* before;  ///< null for what enters
  const LinkedMetamodel* after;
};

using Parts = std::map<std::u16string, Part>;

Parts partsOf(const BaselineHop& step) {
  Parts parts;
  for (const auto& [name, after] : step.to.metamodels) {
    if (after == nullptr) continue;
    const LinkedMetamodel* before = findHeld(step.from, name);
    if (before == nullptr || step.hops.contains(name))
      parts.emplace(name, Part{before, after.get()});
  }
  return parts;
}

class TieSearch {
 public:
  TieSearch(VersionRepository& repository, const BaselineHop& step)
      : repository_(repository), parts_(partsOf(step)) {}

  std::vector<StepTie> run() {
    for (const auto& [name, part] : parts_) {
      addNewNeeds(withRequirements(*part.after));
      if (part.before != nullptr) addOldNeeds(withRequirements(*part.before));
    }
    std::stable_sort(ties_.begin(), ties_.end(), [](const StepTie& left, const StepTie& right) {
      return std::tie(left.mover, left.companion) < std::tie(right.mover, right.companion);
    });
    return std::move(ties_);
  }

 private:
  /// All that a metamodel needs.
  struct Needs {
    Metamodel dependent;
    std::size_t linked;            // as many of the dependencies link
    std::vector<bool> isOptional;  // of those after them
  };

  Needs withRequirements(const Metamodel& metamodel) {
    const Metamodel& descriptor = metamodel;
    Needs needs{Metamodel(descriptor), metamodel.dependencies.size(), {}};
    for (pathfinder::PeerRequirement& required : repository_.getRequirements(metamodel)) {
      needs.dependent.dependencies.emplace_back(required.name, required.range);
      needs.isOptional.push_back(required.isOptional);
    }
    return needs;
  }

  /// What a version that the step brings needs others to be moved for.
  void addNewNeeds(const Needs& needs) {
    const Metamodel& dependent = needs.dependent;
    forEachPartRequired(needs, [&](std::size_t dependency, const Part& required) {
      const std::u16string& companion = required.after->name;
      if (required.before == nullptr) {
        const bool isOptional =
            dependency >= needs.linked && needs.isOptional[dependency - needs.linked];
        if (isOptional) return;
        ties_.push_back({dependent.name, companion, dependent, dependency, std::nullopt});
      } else if (!admits(dependent, dependency, required.before->version)) {
        ties_.push_back(
            {dependent.name, companion, dependent, dependency, required.before->version});
      }
    });
  }

  /// What a version that the step leaves keeps others from being moved for.
  void addOldNeeds(const Needs& needs) {
    const Metamodel& dependent = needs.dependent;
    forEachPartRequired(needs, [&](std::size_t dependency, const Part& required) {
      const VersionId& version = required.after->version;
      if (required.before == nullptr || admits(dependent, dependency, version)) return;
      ties_.push_back({required.after->name, dependent.name, dependent, dependency, version});
    });
  }

  /// Of several dependencies on one name, the first is the one that linking goes by; of what does
  /// not link, all have to be met.
  template <class Use>
  void forEachPartRequired(const Needs& needs, const Use& use) {
    std::set<std::u16string> seen;
    for (std::size_t i = 0; i < needs.dependent.dependencies.size(); ++i) {
      const std::u16string& name = needs.dependent.dependencies[i].name;
      const auto required = parts_.find(name);
      if (required == parts_.end()) continue;
      if (i < needs.linked && !seen.insert(name).second) continue;
      use(i, required->second);
    }
  }

  bool admits(const Metamodel& dependent, std::size_t dependency, const VersionId& version) {
    const auto& [name, range] = dependent.dependencies[dependency];
    return isAdmitted(repository_, name, range, version);
  }

  VersionRepository& repository_;
  const Parts parts_;
  std::vector<StepTie> ties_;
};

using Names = std::vector<std::u16string>;

/// The names that ties lead to from one another, itself among them. (A step has few parts.)
class Companions {
 public:
  Companions(const Parts& parts, const std::vector<StepTie>& ties) {
    for (const StepTie& tie : ties) direct_.emplace(tie.mover, tie.companion);
    for (const auto& [name, part] : parts) follow(name, all_[name]);
  }

  bool include(const std::u16string& mover, const std::u16string& companion) const {
    return all_.at(mover).contains(companion);
  }
  std::size_t count(const std::u16string& mover) const { return all_.at(mover).size(); }

 private:
  void follow(const std::u16string& first, std::set<std::u16string>& found) const {
    Names waiting{first};
    found.insert(first);
    while (!waiting.empty()) {
      const auto [begin, end] = direct_.equal_range(waiting.back());
      waiting.pop_back();
      for (auto tie = begin; tie != end; ++tie) {
        if (found.insert(tie->second).second) waiting.push_back(tie->second);
      }
    }
  }

  std::multimap<std::u16string, std::u16string> direct_;
  std::map<std::u16string, std::set<std::u16string>> all_;
};

/// Strongly connected components, each after all that ties lead to from it: those have fewer
/// companions.
std::vector<Names> componentsOf(const Parts& parts, const Companions& companions) {
  std::vector<Names> components;
  for (const auto& [name, part] : parts) {
    const auto same =
        std::find_if(components.begin(), components.end(), [&, &own = name](auto& known) {
          return companions.include(own, known.front()) && companions.include(known.front(), own);
        });
    if (same == components.end()) {
      components.push_back({name});
    } else {
      same->push_back(name);
    }
  }
  std::stable_sort(components.begin(), components.end(),
                   [&](const Names& left, const Names& right) {
                     return companions.count(left.front()) < companions.count(right.front());
                   });
  return components;
}

}  // namespace

std::vector<StepTie> tiesOf(VersionRepository& repository, const BaselineHop& step) {
  return TieSearch(repository, step).run();
}

std::vector<Names> bundlesOf(const BaselineHop& step, const std::vector<StepTie>& ties) {
  const Parts parts = partsOf(step);
  const Companions companions(parts, ties);
  std::vector<Names> bundles;
  std::set<std::u16string> taken;
  for (const Names& component : componentsOf(parts, companions)) {
    const auto mover = std::find_if(component.begin(), component.end(),
                                    [&](const auto& name) { return step.hops.contains(name); });
    if (mover == component.end()) continue;  // enters, with the first bundle that leads to it
    Names bundle;
    for (const auto& [name, part] : parts) {
      const bool isHere = part.before == nullptr ? companions.include(*mover, name)
                                                 : std::find(component.begin(), component.end(),
                                                             name) != component.end();
      if (isHere && taken.insert(name).second) bundle.push_back(name);
    }
    bundles.push_back(std::move(bundle));
  }
  return bundles;
}

std::string describe(const StepTie& tie) {
  const auto& [name, range] = tie.requirement();
  std::string text = fl::i18n::ustring_to_utf8(tie.dependent.name) + " " +
                     textOf(tie.dependent.version) + " needs " + fl::i18n::ustring_to_utf8(name) +
                     " " + rangeText(range);
  return text + (tie.refused ? ", not " + textOf(*tie.refused) : ", which enters");
}

}  // namespace tarn::evolution::catalogue
