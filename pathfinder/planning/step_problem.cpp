// Branching on one name after the other, with forward checking: deciding a name removes from the
// domains of those that follow whatever cannot stand beside it (a name before has been decided, and
// has removed from this one's domain in turn).
//
// The bound of a partial step is the sum, over the names, of the best that each can still do by
// itself, for each possible number of steps before. It is kept up to date by what changed, and only
// looked for by trial where the names' best options are not available together for the least
// number of steps. Invariants:
//
// - `leastEver` and `sum` are sums over all names, decided ones included;
// - a name's candidates are sorted so that the first that is open and fits is its best one;
// - a bound is never dearer than any step that the partial one can become, nor are its weights
//   lighter where totals are equal: what is left out are only constraints.
//
// Deciding costs the sizes of the neighbours' domains; a bound by trial looks at each candidate
// once for each number of steps that makes a difference.

#include "pathfinder/planning/step_problem.hpp"

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

namespace {

constexpr std::uint32_t noSteps = std::numeric_limits<std::uint32_t>::max();

}  // namespace

void StepProblem::reset(Kind kind) {
  kind_ = kind;
  domainWords_ = 0;
  longestWay_ = 0;
  aheadLength_ = 0;
  domains_.clear();
  candidates_.clear();
  decidedSteps_ = 0;
  decidedSum_ = {};
  decidedAhead_.clear();
  open_.clear();
}

void StepProblem::addOption(const StepOption& option) {
  const VersionBounds& bounds = ground_->bounds[option.before];
  if (!bounds.isReachable) return;
  candidates_.push_back({option, option.hop + bounds.distance, &bounds});
  longestWay_ = std::max(longestWay_, bounds.hops);
}

void StepProblem::endName() {
  const std::size_t first = domains_.empty() ? 0 : domains_.back().end;
  const auto begin = candidates_.begin() + static_cast<std::ptrdiff_t>(first);
  std::sort(begin, candidates_.end(), [this](const Candidate& left, const Candidate& right) {
    if (left.least != right.least) return left.least < right.least;
    if (left.option.hop != right.option.hop) return left.option.hop > right.option.hop;
    return isHeavierFromEnd(ground_->bounds, left.option.before, right.option.before);
  });
  domains_.push_back({first, candidates_.size()});
  domainWords_ = wordsFor(candidates_.size());
  aheadLength_ = std::min(longestWay_, lookahead);
  const auto name = static_cast<NameIndex>(domains_.size() - 1);
  if (isDecided(name)) {
    addDecided(candidates_.back());
  } else {
    open_.push_back(name);
  }
}

bool StepProblem::isDecided(NameIndex name) const {
  const Domain& domain = domains_[name];
  return domain.end - domain.first == 1 && !candidates_[domain.first].option.withoutOrdinaryHop &&
         ground_->compatibility.neighbours(name).empty();
}

/// Adds an option to sums, or takes it out of them.
template <class Operation>
void StepProblem::tally(const Operation& operation, const Candidate& candidate,
                        PartialStep::Sum& sum, std::uint64_t* ahead) const {
  sum.least = operation(sum.least, candidate.least);
  sum.hops = operation(sum.hops, candidate.option.hop);
  visitHopsAhead(ground_->bounds, candidate.option.before, [&](std::uint64_t weight) {
    *ahead = operation(*ahead, weight);
    ++ahead;
  });
}

void StepProblem::addDecided(const Candidate& candidate) {
  decidedSteps_ = std::max(decidedSteps_, candidate.bounds->ordinarySteps);
  const std::size_t length = hopsAhead(*candidate.bounds);
  if (decidedAhead_.size() < length) decidedAhead_.resize(length);
  tally(std::plus(), candidate, decidedSum_, decidedAhead_.data());
}

bool StepProblem::begin(PartialStep& partial) const {
  std::fill_n(partial.words, domainWords_, ~BitWord{0});
  partial.next = 0;
  partial.steps = decidedSteps_;
  for (const NameIndex name : open_) {
    partial.steps = std::max(partial.steps, fewestSteps(partial, domains_[name]));
  }
  refresh(partial);
  return propagate(partial);
}

/// The fewest steps before for which some option of the name is available; none when no option is
/// left.
std::uint32_t StepProblem::fewestSteps(const PartialStep& partial, const Domain& domain) const {
  std::uint32_t fewest = noSteps;
  for (std::size_t i = domain.first; i < domain.end; ++i) {
    if (isOpen(partial, i)) fewest = std::min(fewest, candidates_[i].bounds->ordinarySteps);
  }
  return domain.first == domain.end ? 0 : fewest;
}

/// Adds a name's best options to the sums.
void StepProblem::count(PartialStep& partial, const Domain& domain) const {
  partial.leastEver += leastOf(partial, domain);
  const Candidate* candidate = best(partial, domain, partial.steps, isStep());
  if (candidate == nullptr) {
    ++partial.sum.unmet;
    return;
  }
  tally(std::plus(), *candidate, partial.sum, aheadIn(partial));
}

/// Takes a name's best options out of the sums.
void StepProblem::discount(PartialStep& partial, const Domain& domain) const {
  partial.leastEver -= leastOf(partial, domain);
  const Candidate* candidate = best(partial, domain, partial.steps, isStep());
  if (candidate == nullptr) {
    --partial.sum.unmet;
    return;
  }
  tally(std::minus(), *candidate, partial.sum, aheadIn(partial));
}

void StepProblem::refresh(PartialStep& partial) const {
  partial.leastEver = decidedSum_.least;
  partial.sum = decidedSum_;
  std::uint64_t* ahead = aheadIn(partial);
  std::fill(std::copy(decidedAhead_.begin(), decidedAhead_.end(), ahead), ahead + aheadLength_, 0);
  for (const NameIndex name : open_) count(partial, domains_[name]);
  partial.isStale = false;
}

/// Decides the next names as long as they have one option each.
bool StepProblem::propagate(PartialStep& partial) const {
  for (; partial.next < open_.size(); ++partial.next) {
    const Domain& domain = domains_[open_[partial.next]];
    std::size_t open = 0;
    std::size_t last = 0;
    for (std::size_t option = domain.first; option < domain.end && open < 2; ++option) {
      if (!isOpen(partial, option)) continue;
      ++open;
      last = option;
    }
    if (open == 0) return false;
    if (open > 1) return true;
    if (!decide(partial, last)) return false;
  }
  return true;
}

bool StepProblem::choose(PartialStep& partial, std::size_t option) const {
  if (!decide(partial, option)) return false;
  ++partial.next;
  return propagate(partial);
}

/// Removes the options of a domain that are not kept; false when none is left. `steps` grows to
/// what the name then needs.
template <class IsKept>
bool StepProblem::narrow(PartialStep& partial, const Domain& domain, const IsKept& isKept,
                         std::uint32_t& steps) const {
  bool anyClosed = false;
  for (std::size_t i = domain.first; i < domain.end; ++i) {
    if (!isOpen(partial, i) || isKept(i)) continue;
    if (!std::exchange(anyClosed, true)) discount(partial, domain);
    close(partial, i);
  }
  if (!anyClosed) return true;
  const std::uint32_t fewest = fewestSteps(partial, domain);
  if (fewest == noSteps) return false;
  steps = std::max(steps, fewest);
  count(partial, domain);
  return true;
}

/// Removes the name's other options, and those of later names that cannot stand beside this one.
bool StepProblem::decide(PartialStep& partial, std::size_t option) const {
  const VersionIndex version = candidates_[option].option.before;
  const NameIndex name = ground_->space.versions[version].name;
  std::uint32_t steps = partial.steps;
  narrow(
      partial, domains_[name], [&](std::size_t other) { return other == option; }, steps);
  const auto& neighbours = ground_->compatibility.neighbours(name);
  for (std::size_t i = 0; i < neighbours.size(); ++i) {
    if (neighbours[i] < name) continue;
    const ConstBitRow compatible = ground_->compatibility.row(version, i);
    const VersionIndex first = ground_->space.names[neighbours[i]].first;
    const auto isCompatible = [&](std::size_t other) {
      return compatible.contains(candidates_[other].option.before - first);
    };
    if (!narrow(partial, domains_[neighbours[i]], isCompatible, steps)) return false;
  }
  if (steps > partial.steps) {
    partial.steps = steps;
    partial.isStale = true;
    if (kind_ != Kind::StepWithOrdinaryHop) refresh(partial);
  }
  return true;
}

/// The least weight of an option, for any number of steps before.
std::uint64_t StepProblem::leastOf(const PartialStep& partial, const Domain& domain) const {
  for (std::size_t i = domain.first; i < domain.end; ++i) {
    if (isOpen(partial, i)) return candidates_[i].least;
  }
  return 0;
}

const StepProblem::Candidate* StepProblem::best(const PartialStep& partial, const Domain& domain,
                                                std::uint32_t steps, bool withOrdinaryHop) const {
  for (std::size_t i = domain.first; i < domain.end; ++i) {
    const Candidate& candidate = candidates_[i];
    if (!isOpen(partial, i) || candidate.bounds->ordinarySteps > steps) continue;
    const bool isFit = withOrdinaryHop ? !candidate.option.withoutOrdinaryHop
                                       : candidate.option.hop != hopWeight(false);
    if (isFit) return &candidate;
  }
  return nullptr;
}

void StepProblem::setBound(const PartialStep::Sum& sum, const std::uint64_t* sums,
                           std::uint32_t steps, bool withOrdinaryHop,
                           std::vector<std::uint64_t>& ahead, CostBound& bound) const {
  ahead.clear();
  if (isStep()) ahead.push_back(stepWeight(sum.hops));
  std::uint32_t ordinarySteps = steps;
  std::uint32_t place = 0;
  for (; place < aheadLength_ && sums[place] > 0; ++place) {
    const bool isOrdinary = ordinarySteps > 0 && ordinaryPart(sums[place]) > 0;
    ahead.push_back(isOrdinary ? stepWeight(sums[place]) : sums[place]);
    if (isOrdinary) --ordinarySteps;
  }
  bound.total = sum.least + steps + (withOrdinaryHop ? 1 : 0);
  bound.ahead = ahead;
  bound.isCutOff = place == aheadLength_ && longestWay_ > aheadLength_;
}

bool StepProblem::findBound(const PartialStep& partial, const WeightChains& chains,
                            Scratch& scratch, CostBound& bound) const {
  if (partial.isStale) {
    bound = {partial.leastEver + partial.steps + 1, WeightChains::empty, {}, true};
    return true;
  }
  // More steps before could only help if the cheapest options of all were not among the usable.
  const bool isSettled = partial.sum.unmet == 0 && partial.sum.least == partial.leastEver;
  if (!isSettled || kind_ == Kind::Step) {
    return findBoundByTrial(partial, chains, scratch, bound);
  }
  setBound(partial.sum, partial.words + domainWords_, partial.steps, isStep(), scratch.ahead,
           bound);
  return true;
}

/// The bound, by looking at every number of steps before that could be the best.
bool StepProblem::findBoundByTrial(const PartialStep& partial, const WeightChains& chains,
                                   Scratch& scratch, CostBound& bound) const {
  bool isFound = false;
  for (const bool withOrdinaryHop : {false, true}) {
    if (withOrdinaryHop ? !isStep() : kind_ == Kind::StepWithOrdinaryHop) continue;
    const std::uint64_t least = partial.leastEver + (withOrdinaryHop ? 1 : 0);
    const auto isTooDear = [&](std::uint32_t steps) {
      return isFound && least + steps > bound.total;
    };
    for (std::uint32_t steps = partial.steps; steps != noSteps && !isTooDear(steps);
         steps = isTooDear(steps + 1) ? noSteps : nextStepsThatMatter(partial, steps)) {
      CostBound tried;
      if (!tryBound(partial, steps, withOrdinaryHop, scratch, tried)) continue;
      if (isFound && !comesFirst(chains, tried, bound)) continue;
      std::swap(scratch.ahead, scratch.tried);
      bound = tried;
      isFound = true;
    }
  }
  return isFound;
}

/// The bound for that number of steps before; false when some name has no option for it.
bool StepProblem::tryBound(const PartialStep& partial, std::uint32_t steps, bool withOrdinaryHop,
                           Scratch& scratch, CostBound& bound) const {
  PartialStep::Sum sum;
  scratch.looks += domains_.size();
  if (!sumUp(partial, steps, withOrdinaryHop, sum, scratch.sums)) return false;
  setBound(sum, scratch.sums.data(), steps, withOrdinaryHop, scratch.tried, bound);
  return true;
}

/// Sums the best options up; false when some name has none for that number of steps.
bool StepProblem::sumUp(const PartialStep& partial, std::uint32_t steps, bool withOrdinaryHop,
                        PartialStep::Sum& sum, std::vector<std::uint64_t>& sums) const {
  sums.assign(aheadLength_, 0);
  for (const Domain& domain : domains_) {
    const Candidate* candidate = best(partial, domain, steps, withOrdinaryHop);
    if (candidate == nullptr) return false;
    tally(std::plus(), *candidate, sum, sums.data());
  }
  return true;
}

/// The next number of steps before for which an option is available that was not.
std::uint32_t StepProblem::nextStepsThatMatter(const PartialStep& partial,
                                               std::uint32_t steps) const {
  std::uint32_t next = noSteps;
  for (std::size_t i = 0; i < candidates_.size(); ++i) {
    const std::uint32_t needed = candidates_[i].bounds->ordinarySteps;
    if (needed > steps && needed < next && isOpen(partial, i)) next = needed;
  }
  return next;
}

bool StepProblem::takeOptions(const PartialStep& partial, std::vector<StepOption>& options) const {
  options.clear();
  std::uint64_t hops = 0;
  bool mayHaveOrdinaryHop = true;
  for (const Domain& domain : domains_) {
    std::size_t i = domain.first;
    while (!isOpen(partial, i)) ++i;
    options.push_back(candidates_[i].option);
    hops += options.back().hop;
    mayHaveOrdinaryHop &= !options.back().withoutOrdinaryHop;
  }
  return !isStep() || (hops > 0 && (mayHaveOrdinaryHop || ordinaryPart(hops) == 0));
}

}  // namespace tarn::evolution::pathfinder
