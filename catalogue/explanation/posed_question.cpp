#include "catalogue/explanation/posed_question.hpp"

#include <algorithm>
#include <deque>

#include "catalogue/model/admitted_versions.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::VersionBaseline;
using pathfinder::VersionId;
using pathfinder::VersionRepository;

namespace {

/// Adds a version unless it is known; returns whether it was not.
bool addNew(const VersionId& version, std::vector<VersionId>& known) {
  const bool isNew = std::find(known.begin(), known.end(), version) == known.end();
  if (isNew) known.push_back(version);
  return isNew;
}

/// What hops and dependencies lead to, each metamodel by itself.
class Reach {
 public:
  Reach(VersionRepository& repository, Direction direction, const std::set<std::u16string>& held)
      : repository_(repository), direction_(direction), held_(held) {}

  void enter(const VersionBaseline& baseline) {
    for (const auto& [name, linked] : baseline.metamodels) enter(*linked);
  }

  void enter(const Metamodel& metamodel) {
    if (addNew(metamodel.version, reached_[metamodel.name])) waiting_.push_back(metamodel);
  }

  /// Goes on until a version is found with which it shall end; whether there is one.
  template <class IsEnd>
  bool spreadTo(const IsEnd& isEnd) {
    for (; !waiting_.empty(); waiting_.pop_front()) {
      const Metamodel current = waiting_.front();
      if (isEnd(current)) return true;
      followHops(current);
      followDependencies(current);
    }
    return false;
  }

  void spread() {
    spreadTo([](const Metamodel&) { return false; });
  }

  /// The versions of a metamodel that some dependency may bring in.
  std::vector<VersionId> broughtIn(const std::u16string& name) const {
    const auto found = broughtIn_.find(name);
    return found == broughtIn_.end() ? std::vector<VersionId>() : found->second;
  }

 private:
  void followHops(const Metamodel& current) {
    std::vector<Hop> hops;
    repository_.findHops(current.name, current.version, hops);
    for (const Hop& hop : hops) {
      const auto target = repository_.getMetamodel(hop.name, hop.to);
      if (!target) continue;
      const Direction hopDirection = repository_.getDirection(current, *target);
      if (VersionRepository::areDirectionsInconsistent(direction_, hopDirection)) continue;
      enter(*target);
    }
  }

  void followDependencies(const Metamodel& current) {
    for (const Dependency& dependency : current.dependencies) {
      if (held_.contains(dependency.name)) continue;
      for (const Metamodel& candidate :
           listAdmitted(repository_, dependency.name, dependency.range)) {
        addNew(candidate.version, broughtIn_[candidate.name]);
        enter(candidate);
      }
    }
  }

  VersionRepository& repository_;
  const Direction direction_;
  const std::set<std::u16string>& held_;  // by every source: can only be moved
  std::map<std::u16string, std::vector<VersionId>> reached_;
  std::map<std::u16string, std::vector<VersionId>> broughtIn_;
  std::deque<Metamodel> waiting_;
};

std::set<std::u16string> heldByAll(const std::vector<VersionBaseline>& baselines) {
  std::set<std::u16string> result;
  for (const auto& [name, linked] : baselines.front().metamodels) {
    const bool isHeld = std::all_of(
        baselines.begin(), baselines.end(),
        [&name = name](const auto& baseline) { return baseline.metamodels.contains(name); });
    if (isHeld) result.insert(name);
  }
  return result;
}

void addHeld(const std::vector<VersionBaseline>& baselines, const std::u16string& name,
             std::vector<VersionId>& result) {
  for (const VersionBaseline& baseline : baselines) {
    const auto held = baseline.metamodels.find(name);
    if (held != baseline.metamodels.end()) addNew(held->second->version, result);
  }
}

/// Adds to the newcomers' starts what may bring them in.
void spread(Reach& reach, PosedQuestion& question) {
  reach.spread();
  for (const std::u16string& name : question.newcomers) {
    for (const VersionId& version : reach.broughtIn(name)) addNew(version, question.starts[name]);
  }
}

}  // namespace

void findStarts(PosedQuestion& question) {
  const std::set<std::u16string> held = heldByAll(question.sources);
  for (const auto& [name, goal] : question.goals) {
    addHeld(question.sources, name, question.starts[name]);
    if (!held.contains(name)) question.newcomers.insert(name);
  }
  if (question.newcomers.empty()) return;
  Reach reach(question.inquiry->repository(), question.direction, held);
  for (const VersionBaseline& source : question.sources) reach.enter(source);
  spread(reach, question);
}

void findStartsOf(const SelectedMetamodels& selection, PosedQuestion& question) {
  std::set<std::u16string> held;
  for (const auto& [name, metamodel] : selection) held.insert(name);
  for (const auto& [name, goal] : question.goals) {
    std::vector<VersionId>& starts = question.starts[name];
    const auto selected = selection.find(name);
    if (selected == selection.end()) {
      question.newcomers.insert(name);
    } else {
      starts.push_back(selected->second.version);
    }
  }
  Reach reach(question.inquiry->repository(), question.direction, held);
  for (const auto& [name, metamodel] : selection) reach.enter(metamodel);
  spread(reach, question);
}

bool mayMeetRequirements(const PosedQuestion& question) {
  LinkableRepository& repository = question.inquiry->repository();
  const std::set<std::u16string> held = heldByAll(question.sources);
  Reach reach(repository, question.direction, held);
  for (const VersionBaseline& source : question.sources) reach.enter(source);
  return reach.spreadTo(
      [&](const Metamodel& metamodel) { return !repository.getRequirements(metamodel).empty(); });
}

}  // namespace tarn::evolution::catalogue
