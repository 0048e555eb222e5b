// Deletion-based minimisation: leaves out name by name, and keeps a name without which there would
// be a path. What remains blocks, and none of it can be left out. One question for each name; none
// of this where the path finder can be asked for a smallest set at once. Then
// the closest baseline that all of them can reach shows which hops a clash holds up there. See
// docs/catalogue.md.

#include "catalogue/explanation/blocking_set.hpp"

#include <algorithm>

#include "catalogue/explanation/clash_search.hpp"
#include "catalogue/explanation/goal_subsets.hpp"
#include "catalogue/explanation/nearest_baseline.hpp"
#include "catalogue/explanation/requirement_clash.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Metamodel;
using pathfinder::VersionBaseline;
using pathfinder::VersionId;

namespace {

/// What of a baseline stands under some names, and what that links.
VersionBaseline cutDown(const VersionBaseline& baseline, const Names& names) {
  VersionBaseline result;
  for (const auto& [name, linked] : baseline.metamodels) {
    if (names.contains(name)) result.tryEmplace(linked);
  }
  return result;
}

/// The question about some names only, as `NeverTogether` defines what leaving the others out
/// means. Unless sources may be cut down to that they stay whole: what requires others cannot be
/// asked about without them.
PosedQuestion partOf(const PosedQuestion& question, const Names& names, bool mayCut) {
  PosedQuestion part{.inquiry = question.inquiry,
                     .graphs = question.graphs,
                     .direction = question.direction,
                     .goals = restrictTo(question.goals, names)};
  for (const auto& [name, goal] : part.goals) {
    part.starts.emplace(name, question.starts.at(name));
    if (question.newcomers.contains(name)) part.newcomers.insert(name);
  }
  for (const VersionBaseline& source : question.sources) {
    const bool holdsAll = std::all_of(part.goals.begin(), part.goals.end(), [&](const auto& goal) {
      return source.metamodels.contains(goal.first);
    });
    VersionBaseline kept = mayCut && holdsAll ? cutDown(source, names) : source;
    const bool isNew =
        std::find(part.sources.begin(), part.sources.end(), kept) == part.sources.end();
    if (isNew) part.sources.push_back(std::move(kept));
  }
  return part;
}

class Minimisation {
 public:
  explicit Minimisation(const PosedQuestion& question)
      : question_(question), mayCut_(!mayMeetRequirements(question)) {}

  bool isMinimal() const { return isMinimal_; }

  PosedQuestion about(const Names& names) const { return partOf(question_, names, mayCut_); }

  Names run() {
    Names names;
    for (const auto& [name, goal] : question_.goals) names.insert(name);
    if (isBlocked(names)) {
      leaveOut(question_.newcomers, names);
    } else {
      names = addHeld(names);
      leaveOut(question_.newcomers, names);
      leaveOut(bystanders(names), names);
    }
    leaveOut(Names(names), names);
    return names;
  }

 private:
  /// Whether the question about these names only has no path. Denied when it cannot be asked any
  /// more or stays open, so that names are kept then and what remains blocks for certain.
  bool isBlocked(const Names& names) {
    const PosedQuestion part = about(names);
    if (part.goals.empty()) return false;
    if (question_.inquiry->isSpent()) {
      isMinimal_ = false;
      return false;
    }
    const Answer answer = part.reach(part.goals);
    if (answer.isOpen) isMinimal_ = false;
    return answer.isAbsent();
  }

  void leaveOut(const Names& candidates, Names& names) {
    for (const std::u16string& name : candidates) {
      if (names.erase(name) != 0 && !isBlocked(names)) names.insert(name);
    }
  }

  Names addHeld(Names names) const {
    for (const VersionBaseline& source : question_.sources) {
      for (const auto& [name, linked] : source.metamodels) names.insert(name);
    }
    return names;
  }

  Names bystanders(const Names& names) const {
    Names result;
    for (const std::u16string& name : names) {
      if (!question_.goals.contains(name)) result.insert(name);
    }
    return result;
  }

  const PosedQuestion& question_;
  const bool mayCut_;
  bool isMinimal_ = true;
};

/// Finds what hinders the hops that leave a baseline in which the goals are stuck.
class HopInspection {
 public:
  /// `isWhole` tells that nothing is held beside that baseline.
  HopInspection(const PosedQuestion& question, const VersionBaseline& stuckAt, bool isWhole)
      : question_(question),
        stuckAt_(stuckAt),
        isWhole_(isWhole),
        requirements_(question.inquiry->repository(), RequirementClashes::OfAllNeeds) {}

  std::vector<BlockedHop> run() {
    std::vector<BlockedHop> result;
    for (const auto& [name, goal] : question_.goals) {
      const auto held = stuckAt_.metamodels.find(name);
      if (held == stuckAt_.metamodels.end()) continue;
      for (const HopGraph::Edge* edge : edgesFrom(*held->second, AnyChain)) {
        if (auto clash = findClashOf(*edge)) result.push_back({edge->hop, *std::move(clash)});
      }
    }
    return result;
  }

 private:
  /// Which hops of a goal count: those after which it still has a chain of hops, or only those that
  /// do not take it further away.
  enum Allowance { AnyChain, NoFurther };

  std::vector<const HopGraph::Edge*> edgesFrom(const Metamodel& metamodel, Allowance allowance) {
    const HopGraph& graph = question_.graphs->of(metamodel.name);
    const auto from = graph.find(metamodel.version);
    const auto goal = question_.goals.find(metamodel.name);
    std::vector<std::optional<std::size_t>> hopsLeft;
    if (goal != question_.goals.end()) hopsLeft = graph.hopsTo(goal->second.version);
    std::vector<const HopGraph::Edge*> result;
    for (const HopGraph::Edge& edge : graph.edges()) {
      if (edge.from != from || edge.isAgainst) continue;
      if (goal != question_.goals.end()) {
        if (!hopsLeft[edge.to]) continue;
        if (allowance == NoFurther && hopsLeft[edge.from] < hopsLeft[edge.to]) continue;
      }
      result.push_back(&edge);
    }
    return result;
  }

  std::optional<Clash> findClashOf(const HopGraph::Edge& edge) {
    for (const Allowance allowance : {AnyChain, NoFurther}) {
      const Given given = versionsBeside(edge, allowance);
      if (question_.mayLink) {
        const auto candidates = candidatesOf(given);
        if (!candidates) return std::nullopt;  // the hop's target cannot be linked
        if (auto clash = findClash(question_.inquiry->repository(), *candidates)) return clash;
      }
      if (auto clash = requirements_.find(given)) return clash;
    }
    return isWhole_ && question_.mayLink ? findMissing(edge) : std::nullopt;
  }

  /// No value when some name can have no version.
  std::optional<std::vector<Candidates>> candidatesOf(const Given& given) {
    std::vector<Candidates> candidates;
    for (const auto& [name, versions] : given) {
      Candidates choice{name, {}};
      for (const Metamodel& version : versions) add(version, choice);
      if (choice.linked.empty()) return std::nullopt;
      candidates.push_back(std::move(choice));
    }
    return candidates;
  }

  /// What each name may have after a hop, itself included.
  Given versionsBeside(const HopGraph::Edge& edge, Allowance allowance) {
    Given result;
    for (const auto& [name, held] : stuckAt_.metamodels) {
      std::vector<Metamodel>& versions = result[name];
      const auto& known = question_.graphs->of(name).versions();
      if (name == edge.hop.name) {
        versions.push_back(known[edge.to]);
        continue;
      }
      versions.emplace_back(held->name, held->version, held->dependencies);
      for (const HopGraph::Edge* other : edgesFrom(*held, allowance)) {
        versions.push_back(known[other->to]);
      }
    }
    return result;
  }

  /// What the hop's target requires and nothing brings in.
  std::optional<Clash> findMissing(const HopGraph::Edge& edge) {
    LinkableRepository& repository = question_.inquiry->repository();
    const Metamodel& target = question_.graphs->of(edge.hop.name).versions()[edge.to];
    const auto requirements = repository.getRequirements(target);
    if (requirements.empty()) return std::nullopt;
    const Given given = versionsBeside(edge, AnyChain);
    for (const auto& [name, range, isOptional] : requirements) {
      const auto mayBring = [&, &name = name](const Metamodel& metamodel) {
        const LinkedMetamodels* linked = repository.tryLink(metamodel);
        return linked != nullptr &&
               std::any_of(linked->begin(), linked->end(),
                           [&](const auto& each) { return each->linkedMetamodels.contains(name); });
      };
      const bool mayBeHeld =
          isOptional || given.contains(name) ||
          std::any_of(given.begin(), given.end(), [&](const auto& entry) {
            return std::any_of(entry.second.begin(), entry.second.end(), mayBring);
          });
      if (mayBeHeld) continue;
      return Clash{{target.name}, name, {{{{target.name, target.version}}, name, range}}, true};
    }
    return std::nullopt;
  }

  void add(const Metamodel& metamodel, Candidates& choice) {
    const LinkedMetamodels* linked = question_.inquiry->repository().tryLink(metamodel);
    if (linked == nullptr) return;
    choice.linked.insert(choice.linked.end(), linked->begin(), linked->end());
  }

  const PosedQuestion& question_;
  const VersionBaseline& stuckAt_;
  const bool isWhole_;
  RequirementClashes requirements_;
};

std::vector<NamedVersion> versionsOf(const VersionBaseline& baseline) {
  std::vector<NamedVersion> result;
  for (const auto& [name, linked] :
       std::map(baseline.metamodels.begin(), baseline.metamodels.end())) {
    result.push_back({name, linked->version});
  }
  return result;
}

bool speaksOf(const Clash& clash, const std::u16string& name) {
  const auto& parties = clash.parties;
  return clash.contested == name ||
         std::find(parties.begin(), parties.end(), name) != parties.end();
}

/// Explains a smallest blocking set with all that is known of it.
class SmallestSet {
 public:
  explicit SmallestSet(const PosedQuestion& question) : question_(question) {}

  /// No value when the limits do not suffice.
  std::optional<NeverTogether> run() {
    const auto found = question_.inquiry->within([&](const pathfinder::SearchLimits& limits) {
      return question_.blocked->findBlockingSet(limits);
    });
    if (!found) return std::nullopt;
    if (found->stopped) question_.inquiry->noteStopped(*found->stopped);
    result_ = {
        .names = found->names, .isMinimal = found->isMinimal, .isSmallest = found->isSmallest};
    findWhereStuck();
    for (const std::u16string& name : result_.names) {
      if (!isSpokenOf(name)) addClashOf(name, found->exclusions);
    }
    return std::move(result_);
  }

 private:
  /// Looks for clashes of the names with one another before those with others.
  void findWhereStuck() {
    if (!question_.mayLink && !question_.canAskForNearest()) return;
    const Names names(result_.names.begin(), result_.names.end());
    PosedQuestion part = question_.canAskForNearest()
                             ? question_
                             : partOf(question_, names, !mayMeetRequirements(question_));
    part.goals = restrictTo(question_.goals, names);
    const auto stuckAt = findClosestBaseline(part);
    if (!stuckAt) return;
    const VersionBaseline own = cutDown(*stuckAt, names);
    result_.stuckAt = versionsOf(own);
    result_.blocked = HopInspection(part, own, false).run();
    if (result_.blocked.empty()) result_.blocked = HopInspection(part, *stuckAt, true).run();
  }

  bool isSpokenOf(const std::u16string& name) const {
    const auto& others = result_.otherClashes;
    return std::any_of(result_.blocked.begin(), result_.blocked.end(),
                       [&](const BlockedHop& hop) { return speaksOf(hop.clash, name); }) ||
           std::any_of(others.begin(), others.end(),
                       [&](const Clash& clash) { return speaksOf(clash, name); });
  }

  void addClashOf(const std::u16string& name,
                  const std::vector<std::map<std::u16string, VersionId>>& exclusions) {
    for (const auto& versions : exclusions) {
      if (!versions.contains(name)) continue;
      if (auto clash = clashBetween(versions)) {
        result_.otherClashes.push_back(*std::move(clash));
        return;
      }
    }
  }

  std::optional<Clash> clashBetween(const std::map<std::u16string, VersionId>& versions) const {
    Given given;
    std::vector<Candidates> candidates;
    LinkableRepository& repository = question_.inquiry->repository();
    for (const auto& [name, version] : versions) {
      const auto metamodel = repository.getMetamodel(name, version);
      if (!metamodel) return std::nullopt;
      given[name] = {*metamodel};
      if (!question_.mayLink) continue;
      const LinkedMetamodels* linked = repository.tryLink(*metamodel);
      if (linked == nullptr) return std::nullopt;
      candidates.push_back({name, *linked});
    }
    if (auto clash = findClash(repository, candidates)) return clash;
    return RequirementClashes(repository, RequirementClashes::OfAllNeeds).find(given);
  }

  const PosedQuestion& question_;
  NeverTogether result_;
};

}  // namespace

NeverTogether explainBlocking(const PosedQuestion& question) {
  if (question.blocked != nullptr) {
    if (auto smallest = SmallestSet(question).run()) return *std::move(smallest);
  }
  if (!question.mayLink) {
    NeverTogether all{.names = {}, .isMinimal = question.goals.size() <= 1};
    for (const auto& [name, goal] : question.goals) all.names.push_back(name);
    return all;
  }
  Minimisation minimisation(question);
  const Names names = minimisation.run();
  NeverTogether result{.names = {names.begin(), names.end()},
                       .isMinimal = minimisation.isMinimal(),
                       .isSmallest = names.size() <= 1};
  PosedQuestion part = minimisation.about(names);
  if (const auto stuckAt = findClosestBaseline(part)) {
    result.stuckAt = versionsOf(*stuckAt);
    result.blocked = HopInspection(part, *stuckAt, true).run();
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
