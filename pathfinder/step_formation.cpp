#include "pathfinder/step_formation.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "pathfinder/step_weight.hpp"

namespace tarn::evolution::pathfinder {

bool comesFirst(const PlanCost& left, const PlanCost& right) {
  if (left.total != right.total) return left.total < right.total;
  const auto [l, r] = std::mismatch(left.weights.begin(), left.weights.end(), right.weights.begin(),
                                    right.weights.end());
  if (l == left.weights.end() || r == right.weights.end()) return r != right.weights.end();
  return *l > *r;
}

StepFormation::StepFormation(const Ground& ground, Kind kind) : ground_(ground), kind_(kind) {
  names_.reserve(ground.space.names.size());
  candidates_.reserve(2 * ground.space.names.size());
}

void StepFormation::addOption(const Option& option) {
  const Outlook& outlook = ground_.outlooks[option.before];
  if (!outlook.arrives) return;
  candidates_.push_back({option, option.hop + outlook.distance, &outlook});
  retreatLength_ = std::max<std::size_t>(retreatLength_, outlook.retreatLength);
}

void StepFormation::endName() {
  const std::size_t first = names_.empty() ? 0 : names_.back().end;
  const auto begin = candidates_.begin() + static_cast<std::ptrdiff_t>(first);
  std::sort(begin, candidates_.end(), [this](const Candidate& left, const Candidate& right) {
    if (left.least != right.least) return left.least < right.least;
    if (left.option.hop != right.option.hop) return left.option.hop > right.option.hop;
    return hasHeavierRetreat(ground_.outlooks, left.option.before, right.option.before);
  });
  names_.push_back({first, candidates_.size()});
  openWords_ = (candidates_.size() + 63) / 64;
  const auto name = static_cast<NameIndex>(names_.size() - 1);
  if (isDecided(name)) {
    addDecided(candidates_.back());
  } else {
    open_.push_back(name);
  }
}

bool StepFormation::isDecided(NameIndex name) const {
  const Row& row = names_[name];
  return row.end - row.first == 1 && !candidates_[row.first].option.withoutOrdinaryHop &&
         ground_.coexistence.neighbours(name).empty();
}

void StepFormation::addDecided(const Candidate& candidate) {
  decidedSteps_ = std::max(decidedSteps_, candidate.outlook->ordinarySteps);
  decidedSum_.least += candidate.least;
  decidedSum_.hops += candidate.option.hop;
  if (decidedRetreats_.size() < candidate.outlook->retreatLength) {
    decidedRetreats_.resize(candidate.outlook->retreatLength);
  }
  auto retreat = decidedRetreats_.begin();
  visitRetreat(ground_.outlooks, candidate.option.before,
               [&](std::uint64_t weight) { *retreat++ += weight; });
}

StepFormation::Partial StepFormation::begin() const {
  Partial partial;
  partial.words.resize(openWords_ + retreatLength_);
  std::fill_n(partial.words.begin(), openWords_, ~std::uint64_t{0});
  partial.steps = decidedSteps_;
  for (const NameIndex name : open_) {
    partial.steps = std::max(partial.steps, fewestSteps(partial, names_[name]));
  }
  recount(partial);
  return partial;
}

std::uint32_t StepFormation::fewestSteps(const Partial& partial, const Row& row) const {
  std::uint32_t fewest = ~std::uint32_t{0};
  for (std::size_t i = row.first; i < row.end; ++i) {
    if (isOpen(partial, i)) fewest = std::min(fewest, candidates_[i].outlook->ordinarySteps);
  }
  return row.first == row.end ? 0 : fewest;
}

/// Adds a name's best options to the sums.
void StepFormation::count(Partial& partial, const Row& row) const {
  partial.leastEver += leastOf(partial, row);
  const Candidate* candidate = best(partial, row, partial.steps, isStep());
  if (candidate == nullptr) {
    ++partial.sum.unmet;
    return;
  }
  partial.sum.least += candidate->least;
  partial.sum.hops += candidate->option.hop;
  std::uint64_t* retreats = &partial.words[openWords_];
  visitRetreat(ground_.outlooks, candidate->option.before,
               [&](std::uint64_t weight) { *retreats++ += weight; });
}

/// Takes a name's best options out of the sums.
void StepFormation::discount(Partial& partial, const Row& row) const {
  partial.leastEver -= leastOf(partial, row);
  const Candidate* candidate = best(partial, row, partial.steps, isStep());
  if (candidate == nullptr) {
    --partial.sum.unmet;
    return;
  }
  partial.sum.least -= candidate->least;
  partial.sum.hops -= candidate->option.hop;
  std::uint64_t* retreats = &partial.words[openWords_];
  visitRetreat(ground_.outlooks, candidate->option.before,
               [&](std::uint64_t weight) { *retreats++ -= weight; });
}

void StepFormation::recount(Partial& partial) const {
  partial.leastEver = decidedSum_.least;
  partial.sum = decidedSum_;
  const auto retreats = partial.words.begin() + static_cast<std::ptrdiff_t>(openWords_);
  std::fill(std::copy(decidedRetreats_.begin(), decidedRetreats_.end(), retreats),
            partial.words.end(), 0);
  for (const NameIndex name : open_) count(partial, names_[name]);
}

bool StepFormation::settle(Partial& partial) const {
  for (; partial.next < open_.size(); ++partial.next) {
    const Row& row = names_[open_[partial.next]];
    std::size_t open = 0;
    std::size_t last = 0;
    for (std::size_t candidate = row.first; candidate < row.end && open < 2; ++candidate) {
      if (!isOpen(partial, candidate)) continue;
      ++open;
      last = candidate;
    }
    if (open == 0) return false;
    if (open > 1) return true;
    if (!decide(partial, last)) return false;
  }
  return true;
}

/// Closes the name's other candidates and those of later names that cannot stand beside this one;
/// false when one of them has none left.
bool StepFormation::decide(Partial& partial, std::size_t candidate) const {
  const VersionIndex version = candidates_[candidate].option.before;
  const NameIndex name = ground_.space.versions[version].name;
  std::uint32_t steps = partial.steps;
  const auto narrow = [&](const Row& row, const auto& isKept) {
    bool anyClosed = false;
    for (std::size_t i = row.first; i < row.end; ++i) {
      if (!isOpen(partial, i) || isKept(i)) continue;
      if (!std::exchange(anyClosed, true)) discount(partial, row);
      close(partial, i);
    }
    if (!anyClosed) return true;
    const std::uint32_t fewest = fewestSteps(partial, row);
    if (fewest == ~std::uint32_t{0}) return false;
    steps = std::max(steps, fewest);
    count(partial, row);
    return true;
  };
  narrow(names_[name], [&](std::size_t other) { return other == candidate; });
  const auto& neighbours = ground_.coexistence.neighbours(name);
  for (std::size_t i = 0; i < neighbours.size(); ++i) {
    if (neighbours[i] < name) continue;
    const VersionBits* admitted = ground_.coexistence.row(version, i);
    const VersionIndex first = ground_.space.names[neighbours[i]].first;
    const bool anyLeft = narrow(names_[neighbours[i]], [&](std::size_t other) {
      const VersionIndex rank = candidates_[other].option.before - first;
      return (admitted[rank / 64] >> (rank % 64) & 1) != 0;
    });
    if (!anyLeft) return false;
  }
  if (steps > partial.steps) {
    partial.steps = steps;
    partial.isRough = true;
    if (kind_ != Kind::StepWithOrdinaryHop) refine(partial);
  }
  return true;
}

/// The least weight of an option, for any number of steps before.
std::uint64_t StepFormation::leastOf(const Partial& partial, const Row& row) const {
  for (std::size_t i = row.first; i < row.end; ++i) {
    if (isOpen(partial, i)) return candidates_[i].least;
  }
  return 0;
}

const StepFormation::Candidate* StepFormation::best(const Partial& partial, const Row& row,
                                                    std::uint32_t steps,
                                                    bool withOrdinaryHop) const {
  for (std::size_t i = row.first; i < row.end; ++i) {
    const Candidate& candidate = candidates_[i];
    if (!isOpen(partial, i) || candidate.outlook->ordinarySteps > steps) continue;
    const bool isFit = withOrdinaryHop ? !candidate.option.withoutOrdinaryHop
                                       : candidate.option.hop != hopWeight(false);
    if (isFit) return &candidate;
  }
  return nullptr;
}

void StepFormation::setBound(PlanCost& bound, const Sum& sum, const std::uint64_t* retreats,
                             std::uint32_t steps, bool withOrdinaryHop) const {
  bound.total = sum.least + steps + (withOrdinaryHop ? 1 : 0);
  bound.weights.clear();
  if (isStep()) bound.weights.push_back(stepWeight(sum.hops));
  std::uint32_t ordinarySteps = steps;
  for (std::size_t i = 0; i < retreatLength_ && retreats[i] > 0; ++i) {
    const bool isOrdinary = ordinarySteps > 0 && ordinaryPart(retreats[i]) > 0;
    bound.weights.push_back(isOrdinary ? stepWeight(retreats[i]) : retreats[i]);
    if (isOrdinary) --ordinarySteps;
  }
}

void StepFormation::refine(Partial& partial) const {
  recount(partial);
  partial.isRough = false;
}

bool StepFormation::findBound(const Partial& partial, PlanCost& bound) const {
  if (partial.isRough) {
    bound.total = partial.leastEver + partial.steps + 1;
    bound.weights = {std::numeric_limits<std::uint64_t>::max()};
    return true;
  }
  // More steps before could only help if the cheapest options of all were not among the usable.
  const bool isSettled = partial.sum.unmet == 0 && partial.sum.least == partial.leastEver;
  if (!isSettled || kind_ == Kind::Step) return findBoundByTrial(partial, bound);
  setBound(bound, partial.sum, &partial.words[openWords_], partial.steps, isStep());
  return true;
}

/// The bound, by looking at every number of steps before that could be the best.
bool StepFormation::findBoundByTrial(const Partial& partial, PlanCost& bound) const {
  std::uint32_t most = 0;
  for (std::size_t i = 0; i < candidates_.size(); ++i) {
    if (isOpen(partial, i)) most = std::max(most, candidates_[i].outlook->ordinarySteps);
  }
  bool isFound = false;
  PlanCost tried;
  WeightSequence retreats;
  for (const bool withOrdinaryHop : {false, true}) {
    if (withOrdinaryHop ? !isStep() : kind_ == Kind::StepWithOrdinaryHop) continue;
    for (std::uint32_t steps = partial.steps; steps <= most; ++steps) {
      if (isFound && partial.leastEver + steps + (withOrdinaryHop ? 1 : 0) > bound.total) break;
      Sum sum;
      if (!sumUp(partial, steps, withOrdinaryHop, sum, retreats)) continue;
      setBound(tried, sum, retreats.data(), steps, withOrdinaryHop);
      if (!isFound || comesFirst(tried, bound)) std::swap(bound, tried);
      isFound = true;
    }
  }
  return isFound;
}

/// Sums the best options up; false when some name has none for that number of steps.
bool StepFormation::sumUp(const Partial& partial, std::uint32_t steps, bool withOrdinaryHop,
                          Sum& sum, WeightSequence& retreats) const {
  retreats.assign(retreatLength_, 0);
  for (const Row& row : names_) {
    const Candidate* candidate = best(partial, row, steps, withOrdinaryHop);
    if (candidate == nullptr) return false;
    sum.least += candidate->least;
    sum.hops += candidate->option.hop;
    std::size_t i = 0;
    visitRetreat(ground_.outlooks, candidate->option.before,
                 [&](std::uint64_t weight) { retreats[i++] += weight; });
  }
  return true;
}

std::vector<StepFormation::Option> StepFormation::chosen(const Partial& partial) const {
  std::vector<Option> result;
  result.reserve(names_.size());
  std::uint64_t hops = 0;
  bool mayHaveOrdinaryHop = true;
  for (const Row& row : names_) {
    std::size_t i = row.first;
    while (!isOpen(partial, i)) ++i;
    result.push_back(candidates_[i].option);
    hops += result.back().hop;
    mayHaveOrdinaryHop &= !result.back().withoutOrdinaryHop;
  }
  const bool isStepMade = hops > 0 && (mayHaveOrdinaryHop || ordinaryPart(hops) == 0);
  if (isStep() && !isStepMade) result.clear();
  return result;
}

}  // namespace tarn::evolution::pathfinder
