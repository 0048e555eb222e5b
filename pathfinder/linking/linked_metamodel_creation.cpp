// Depth-first traversal of the dependencies, post-order, with a stack of its own: a descriptor
// waits until all candidates of its dependencies are linked.
//
// Cycles are found by Brent's algorithm: one descriptor of the stack is remembered and compared
// with each that is begun after it; after 1, 2, 4, 8 ... of them it is replaced by the last. A
// cycle is met within a few rounds, at one comparison for each descriptor, and no set of those
// pending.

#include "pathfinder/linking/linked_metamodel_creation.hpp"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

#include "pathfinder/limits/linking_budget.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/values/error_text.hpp"

namespace tarn::evolution::pathfinder {

namespace {

void append(LinkedMetamodels& options, const LinkedMetamodels& variants) {
  options.insert(options.end(), variants.begin(), variants.end());
}

}  // namespace

const LinkedMetamodels& LinkedMetamodelCreation::create(const Metamodel& metamodel) {
  if (metamodel.dependencies.empty()) return finish(metamodel, {});
  begin(metamodel);
  while (true) {
    checkpoint();
    if (const Metamodel* next = nextUnlinked(pending_.back())) {
      begin(*next);
      continue;
    }
    const Pending done = std::move(pending_.back());
    pending_.pop_back();
    const LinkedMetamodels& list = finish(*done.metamodel, done.optionsByName);
    if (pending_.empty()) return list;
    append(pending_.back().options, list);
    ++pending_.back().candidate;
  }
}

void LinkedMetamodelCreation::begin(const Metamodel& metamodel) {
  pending_.emplace_back().metamodel = &metamodel;
  detectCycle();
}

/// Gathers options until a candidate is met that has not been linked; null when all are gathered.
const Metamodel* LinkedMetamodelCreation::nextUnlinked(Pending& pending) {
  const std::vector<Dependency>& dependencies = pending.metamodel->dependencies;
  for (; pending.dependency < dependencies.size(); ++pending.dependency) {
    const Dependency& dependency = dependencies[pending.dependency];
    if (!std::exchange(pending.isAsked, true)) {
      host_.findMetamodels(dependency.name, dependency.range, pending.candidates);
    }
    for (; pending.candidate < pending.candidates.size(); ++pending.candidate) {
      const Metamodel& candidate = pending.candidates[pending.candidate];
      const LinkedMetamodels* linked = cache_.find(candidate);
      if (linked == nullptr && candidate.dependencies.empty()) linked = &finish(candidate, {});
      if (linked == nullptr) return &candidate;
      append(pending.options, *linked);
    }
    pending.optionsByName.try_emplace(dependency.name, std::move(pending.options));
    pending.options.clear();
    pending.candidates.clear();
    pending.candidate = 0;
    pending.isAsked = false;
  }
  return nullptr;
}

std::shared_ptr<LinkedMetamodel> LinkedMetamodelCreation::createAlone(const Metamodel& metamodel,
                                                                      const OptionsByName& chosen) {
  const auto linked =
      linkOptions(std::make_shared<LinkedMetamodel>(tag_, metamodel), chosen).front();
  if (auto known = cache_.findEqual(*linked)) return known;
  load(linked);
  auto kept = cache_.addAlone(linked);
  host_.noteLinked();
  return kept;
}

const LinkedMetamodels& LinkedMetamodelCreation::finish(const Metamodel& metamodel,
                                                        const OptionsByName& optionsByName) {
  LinkedMetamodels results =
      linkOptions(std::make_shared<LinkedMetamodel>(tag_, metamodel), optionsByName);
  LinkingBudget::take(results.size());
  ResolvedRequirements requirements = resolveRequirements(host_, metamodel);
  for (auto& linked : results) {
    if (auto known = cache_.findAlone(*linked)) {
      linked = std::move(known);
    } else {
      load(linked);
    }
  }
  const LinkedMetamodels& kept = cache_.add(metamodel, std::move(results), std::move(requirements));
  host_.noteLinked();
  return kept;
}

/// Has the application load a new linked metamodel. What it may have linked to nothing is found out
/// here once rather than wherever links are followed.
void LinkedMetamodelCreation::load(const std::shared_ptr<LinkedMetamodel>& linked) {
  const auto& links = linked->linkedMetamodels;
  const std::size_t before = links.size();
  host_.loadMetamodel(linked);
  if (links.size() == before) return;
  const auto empty = std::find_if(links.begin(), links.end(),
                                  [](const auto& link) { return link.second == nullptr; });
  if (empty == links.end()) return;
  throw std::logic_error("Loading " + briefText(*linked) +
                         " has left a null pointer among its links, under \"" +
                         shownText(empty->first) + "\".");
}

void LinkedMetamodelCreation::detectCycle() {
  const std::size_t last = pending_.size() - 1;
  if (remembered_ < last && *pending_[remembered_].metamodel == *pending_[last].metamodel)
    reportCycle();
  if (++begunSince_ < power_) return;
  remembered_ = last;
  begunSince_ = 0;
  power_ *= 2;
}

/// Names the metamodels from the first on that comes again.
void LinkedMetamodelCreation::reportCycle() const {
  const auto isSame = [](const Pending& left, const Pending& right) {
    return *left.metamodel == *right.metamodel;
  };
  const auto again = std::find_if(pending_.rbegin() + 1, pending_.rend(), [&](const auto& before) {
    return isSame(before, pending_.back());
  });
  const auto length = again - pending_.rbegin();
  auto first = pending_.begin();
  while (!isSame(*first, first[length])) ++first;
  constexpr std::ptrdiff_t mostNamed = 10;
  const std::ptrdiff_t named = length <= mostNamed ? length : mostNamed;
  std::string text = "Metamodels depend on one another in a cycle: ";
  for (auto next = first; next != first + named; ++next) {
    text += briefText(*next->metamodel) + " needs ";
  }
  if (named != length) text += std::to_string(length - named) + " more, the last of which needs ";
  throw std::logic_error(text + briefText(*first->metamodel));
}

}  // namespace tarn::evolution::pathfinder
