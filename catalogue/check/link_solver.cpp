// Backtracking search with unit propagation and conflict-directed backjumping. Variables are the
// names required so far; a domain is an interval of slots, with the two requirements that bound it
// and the unions whose gaps may lie within it, which are looked at when a version is about to be
// taken; taking a version makes it meet the requirements of its dependencies.
//
// - A domain with one version left is taken at once (`forced_`), so that pinned dependencies cost
//   one look each. Otherwise the first open name is decided, newest version first.
// - `conflict_` holds the decisions to blame for a dead end: a version that was decided blames its
//   decision, a forced one the holders of its bounds. While these stand, so does the dead end;
//   so the last of them is changed next, and inherits the others.
// - What changes after the first decision is noted and undone. Domains of former runs are told by
//   their generation, so that a run costs what it touches.
//
// Exponential at worst; work is counted in requirements looked at. docs/catalogue.md proves that
// nothing is missed.

#include "catalogue/check/link_solver.hpp"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace tarn::evolution::catalogue {

namespace {

bool areDisjoint(SlotInterval left, SlotInterval right) {
  return left.end <= right.begin || right.end <= left.begin;
}

}  // namespace

LinkSolver::LinkSolver(const DraftIndex& index)
    : index_(index), isExcluded_(index.slots().size()), domains_(index.names().size()) {}

LinkSolver::Outcome LinkSolver::solve(const std::vector<Slot>& asked, std::uint64_t& budget) {
  start(budget);
  bool isMet = true;
  for (const Slot slot : asked) {
    isMet = isMet && meet({index_.slots().at(slot).name, {slot, slot + 1}, nothing, nothing});
  }
  const Outcome outcome = isMet ? run() : Outcome::Clashing;
  budget -= std::min(budget, work_);
  return outcome;
}

LinkSolver::Outcome LinkSolver::solveDependencies(Slot slot, std::uint64_t& budget) {
  start(budget);
  root_ = slot;
  const Outcome outcome = requireAll(slot) ? run() : Outcome::Clashing;
  budget -= std::min(budget, work_);
  return outcome;
}

std::vector<Slot> LinkSolver::found() {
  std::vector<Slot> result;
  for (const NameNumber name : required_) result.push_back(domain(name).taken);
  return result;
}

void LinkSolver::start(std::uint64_t budget) {
  ++generation_;
  work_ = 0;
  limit_ = budget;
  root_ = nothing;
  changes_.clear();
  required_.clear();
  nextRequired_ = 0;
  forced_.clear();
  decisions_.clear();
  conflict_.clear();
  clash_.reset();
  choices_.clear();
}

LinkSolver::Outcome LinkSolver::run() {
  bool isMet = takeForced();
  while (work_ <= limit_) {
    if (!isMet) {
      if (!backjump()) return Outcome::Clashing;
      isMet = tryNext();
    } else if (const auto open = nextOpen()) {
      isMet = decide(*open);
    } else {
      return Outcome::Consistent;
    }
  }
  return Outcome::Undecided;
}

/// Narrows what is left of a name to what meets the requirement as well. Returns false, with the
/// conflict noted, when that is nothing.
bool LinkSolver::meet(const LinkRequirement& requirement) {
  ++work_;
  const Domain& known = domain(requirement.name);
  const SlotInterval wanted = requirement.candidates;
  if (known.taken != nothing) {
    if (requirement.admits(known.taken)) return true;
    const bool lowerExcludes = areDisjoint(known.lower.candidates, wanted);
    if (lowerExcludes || areDisjoint(known.upper.candidates, wanted)) {
      noteClash(lowerExcludes ? known.lower : known.upper, requirement);
    }
    blame(known.taken);
    blame(requirement.holder);
    return false;
  }
  if (!known.left.empty() && areDisjoint(known.left, wanted)) {
    const LinkRequirement& other = wanted.end <= known.left.begin ? known.lower : known.upper;
    noteClash(other, requirement);
    blame(other.holder);
    blame(requirement.holder);
    blameCause(known);
    return false;
  }
  const bool isNew = known.left.empty();
  narrow(requirement);
  if (!isNew) return true;
  const std::vector<LinkRequirement> optional = known.optional;
  return std::all_of(optional.begin(), optional.end(),
                     [this](const LinkRequirement& each) { return meet(each); });
}

/// The same for what only counts if the name is required, now or later.
bool LinkSolver::meetIfRequired(const LinkRequirement& requirement) {
  Domain& changed = changedDomain(requirement.name);
  changed.optional.push_back(requirement);
  return changed.left.empty() || meet(requirement);
}

/// Leaves of a name what meets the requirement, which is something.
void LinkSolver::narrow(const LinkRequirement& requirement) {
  const SlotInterval left = domain(requirement.name).left;
  const SlotInterval wanted = requirement.candidates;
  const bool isNew = left.empty();
  const bool isUnion = requirement.parts != nullptr;
  if (!isNew && !isUnion && wanted.begin <= left.begin && left.end <= wanted.end) return;
  Domain& changed = changedDomain(requirement.name);
  if (isNew) {
    changed.left = wanted;
    changed.lower = changed.upper = requirement;
    changed.cause = requirement.holder;
    required_.push_back(requirement.name);
  }
  if (isUnion) changed.unions.push_back(requirement);
  if (changed.left.begin < wanted.begin) {
    changed.left.begin = wanted.begin;
    changed.lower = requirement;
  }
  if (wanted.end < changed.left.end) {
    changed.left.end = wanted.end;
    changed.upper = requirement;
  }
  if (changed.left.end - changed.left.begin == 1) forced_.push_back(requirement.name);
}

/// Takes the versions of all names that have just one left.
bool LinkSolver::takeForced() {
  while (!forced_.empty()) {
    const NameNumber name = forced_.back();
    forced_.pop_back();
    const Slot slot = domain(name).left.begin;
    if (domain(name).taken == slot) continue;
    if (isExcluded_[slot] || !isAdmitted(name, slot)) {
      blameAll(domain(name));
      return false;
    }
    if (!take(name, slot, nothing)) return false;
  }
  return true;
}

bool LinkSolver::take(NameNumber name, Slot slot, std::uint32_t level) {
  Domain& changed = changedDomain(name);
  changed.taken = slot;
  changed.level = level;
  return requireAll(slot);
}

bool LinkSolver::requireAll(Slot holder) {
  for (const ResolvedDependency& dependency : index_.dependenciesOf(holder)) {
    if (!dependency.decides() && !dependency.isOptional) continue;
    const ResolvedDependency* parts = dependency.pieces.empty() ? nullptr : &dependency;
    const LinkRequirement requirement{dependency.name, dependency.candidates, holder,
                                      dependency.row, parts};
    if (!(dependency.isOptional ? meetIfRequired(requirement) : meet(requirement))) return false;
  }
  return true;
}

/// The first name required of which no version is taken.
std::optional<NameNumber> LinkSolver::nextOpen() {
  for (; nextRequired_ < required_.size(); ++nextRequired_) {
    const NameNumber name = required_[nextRequired_];
    if (domain(name).taken == nothing) return name;
  }
  return std::nullopt;
}

/// Tries what is left of a name, the newest version first.
bool LinkSolver::decide(NameNumber name) {
  decisions_.push_back(
      {name, domain(name).left.end, changes_.size(), required_.size(), nextRequired_, {}});
  return tryNext();
}

/// Tries the next version of the last decision, or gives the decision up when there is none.
/// Returns false, with the conflict noted, when that does not work out.
bool LinkSolver::tryNext() {
  const auto level = static_cast<std::uint32_t>(decisions_.size() - 1);
  Decision& decision = decisions_.back();
  const Slot first = domain(decision.name).left.begin;
  while (decision.next > first) {
    const Slot slot = --decision.next;
    ++work_;
    if (isExcluded_[slot] || !isAdmitted(decision.name, slot)) continue;
    conflict_.clear();
    return take(decision.name, slot, level) && takeForced();
  }
  conflict_ = decision.conflict;
  blameAll(domain(decision.name));
  choices_.push_back(decision.name);
  decisions_.pop_back();
  return false;
}

/// Goes back to the last decision that is to blame for the conflict. Returns false when there is
/// none.
bool LinkSolver::backjump() {
  forced_.clear();
  if (conflict_.empty()) return false;
  const std::uint32_t level = conflict_.back();
  conflict_.pop_back();
  undo(decisions_[level]);
  decisions_.resize(level + std::size_t{1});
  Levels merged;
  Levels& known = decisions_.back().conflict;
  std::set_union(known.begin(), known.end(), conflict_.begin(), conflict_.end(),
                 std::back_inserter(merged));
  known = std::move(merged);
  conflict_.clear();
  return true;
}

void LinkSolver::undo(const Decision& decision) {
  while (changes_.size() > decision.changes) {
    domains_[changes_.back().name] = changes_.back().before;
    changes_.pop_back();
  }
  required_.resize(decision.required);
  nextRequired_ = decision.nextRequired;
}

LinkSolver::Domain& LinkSolver::domain(NameNumber name) {
  Domain& result = domains_[name];
  if (result.generation != generation_) {
    result = Domain();
    result.generation = generation_;
  }
  return result;
}

/// A domain about to be changed, in a way that going back undoes.
LinkSolver::Domain& LinkSolver::changedDomain(NameNumber name) {
  Domain& result = domain(name);
  if (!decisions_.empty()) changes_.push_back({name, result});
  return result;
}

void LinkSolver::noteClash(const LinkRequirement& first, const LinkRequirement& second) {
  if (!clash_) clash_ = {first, second, chainTo(first.holder), chainTo(second.holder)};
}

std::vector<Slot> LinkSolver::chainTo(Slot holder) {
  std::vector<Slot> chain;
  while (holder != nothing) {
    chain.push_back(holder);
    holder = holder == root_ ? nothing : domain(index_.slots().at(holder).name).cause;
  }
  std::reverse(chain.begin(), chain.end());
  return chain;
}

/// Adds the decisions to the conflict because of which this version is taken.
void LinkSolver::blame(Slot holder) {
  if (decisions_.empty()) return;
  std::vector<Slot> open{holder};
  std::set<Slot> met;
  while (!open.empty()) {
    const Slot slot = open.back();
    open.pop_back();
    ++work_;
    if (slot == nothing || slot == root_ || !met.insert(slot).second) continue;
    const Domain& taken = domain(index_.slots().at(slot).name);
    if (taken.level == nothing) {
      open.push_back(taken.lower.holder);
      open.push_back(taken.upper.holder);
      if (!taken.optional.empty()) open.push_back(taken.cause);
    } else {
      const auto at = std::lower_bound(conflict_.begin(), conflict_.end(), taken.level);
      if (at == conflict_.end() || *at != taken.level) conflict_.insert(at, taken.level);
    }
  }
}

void LinkSolver::blameAll(const Domain& domain) {
  blame(domain.lower.holder);
  blame(domain.upper.holder);
  for (const LinkRequirement& requirement : domain.unions) blame(requirement.holder);
  blameCause(domain);
}

/// Optional requirements may bound a domain, but do not require the name: then what does is to
/// blame as well.
void LinkSolver::blameCause(const Domain& domain) {
  if (!domain.optional.empty()) blame(domain.cause);
}

bool LinkSolver::isAdmitted(NameNumber name, Slot slot) {
  const auto& unions = domain(name).unions;
  return std::all_of(unions.begin(), unions.end(),
                     [slot](const LinkRequirement& each) { return each.admits(slot); });
}

}  // namespace tarn::evolution::catalogue
