// A join, one dependency after the other: the partial results so far, each with every option of the
// next dependency that agrees with what it links.
//
// Invariants: partial results are consistent; options vary slowest, partial results fastest, which
// is the order of the answer. Partial results are indexed by what they link under the names that
// all of them link, so that a join of many with many costs what it yields.

#include "pathfinder/linking/option_linking.hpp"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>

#include "messages/report_exception.hpp"
#include "pathfinder/limits/linking_budget.hpp"
#include "pathfinder/limits/memory_ceiling.hpp"
#include "pathfinder/limits/search_watch.hpp"
#include "pathfinder/values/error_text.hpp"

namespace tarn::evolution::pathfinder {

namespace {

/// What a linked metamodel links under a name; null when it links nothing.
const LinkedMetamodel* linkedUnder(const LinkedMetamodel& holder, const std::u16string& name) {
  const auto found = holder.linkedMetamodels.find(name);
  return found == holder.linkedMetamodels.end() ? nullptr : found->second.get();
}

/// Whether the option agrees with everything that the partial result links. The linking itself has
/// yet to see whether the option links another version of its own name, which never agrees.
bool admits(const LinkedMetamodel& partial, const std::shared_ptr<LinkedMetamodel>& option) {
  const LinkedMetamodel* own = linkedUnder(partial, option->name);
  if (own != nullptr) return own == option.get();
  const auto& links = option->linkedMetamodels;
  return std::all_of(links.begin(), links.end(), [&](const auto& link) {
    const LinkedMetamodel* held = linkedUnder(partial, link.first);
    return held == nullptr || held == link.second.get();
  });
}

/// Partial results by what they link under names that all of them link, so that the few which can
/// link an option need not be sought among the many.
class PartialResults {
 public:
  using Places = std::vector<std::size_t>;

  explicit PartialResults(const LinkedMetamodels& partialResults) : all_(partialResults.size()) {
    for (std::size_t place = 0; place < all_.size(); ++place) all_[place] = place;
    if (all_.size() == 1) return;
    for (const auto& [name, linked] : partialResults.front()->linkedMetamodels) {
      addName(name, partialResults);
    }
  }

  /// A list, in ascending order, that has all partial results which can link the option.
  const Places& near(const LinkedMetamodel& option) const {
    const Places* fewest = &sharing(option.name, &option, all_);
    for (const auto& [name, linked] : option.linkedMetamodels) {
      fewest = &sharing(name, linked.get(), *fewest);
    }
    return *fewest;
  }

 private:
  using ByLinked = std::unordered_map<const LinkedMetamodel*, Places>;

  void addName(const std::u16string& name, const LinkedMetamodels& partialResults) {
    ByLinked places;
    for (std::size_t place = 0; place < partialResults.size(); ++place) {
      const LinkedMetamodel* linked = linkedUnder(*partialResults[place], name);
      if (linked == nullptr) return;
      places[linked].push_back(place);
    }
    byName_.emplace(name, std::move(places));
  }

  /// Those of all that link just `linked` under the name, if they are fewer than `others` and every
  /// one links the name.
  const Places& sharing(const std::u16string& name, const LinkedMetamodel* linked,
                        const Places& others) const {
    static const Places none;
    const auto places = byName_.find(name);
    if (places == byName_.end()) return others;
    const auto found = places->second.find(linked);
    if (found == places->second.end()) return none;
    return found->second.size() < others.size() ? found->second : others;
  }

  Places all_;
  std::unordered_map<std::u16string, ByLinked> byName_;
};

/// Links the one option to each partial result, without those that conflict.
LinkedMetamodels linkOnly(LinkedMetamodels&& partialResults,
                          const std::shared_ptr<LinkedMetamodel>& option) {
  std::erase_if(partialResults,
                [&](const auto& partial) { return !partial->linkMetamodel(option); });
  return std::move(partialResults);
}

/// Refuses to make more results than fit.
void refuseTooMany(const LinkedMetamodels& results) {
  if (results.empty()) return;
  const LinkedMetamodel& one = *results.back();
  const std::size_t bytesEach = sizeof(LinkedMetamodel) + one.linkedMetamodels.size() * 80;
  if (results.size() < surelyFit(bytesEach)) return;
  refuseMoreThanFits(results.size(), bytesEach, "The dependencies of " + briefText(one));
}

/// A copy of each partial result linked to each option, options first, without those that conflict.
LinkedMetamodels linkEach(const LinkedMetamodels& partialResults, const LinkedMetamodels& options) {
  LinkedMetamodels results;
  const PartialResults index(partialResults);
  for (const auto& option : options) {
    refuseTooMany(results);
    LinkingBudget::check(results.size());
    for (const std::size_t place : index.near(*option)) {
      checkpoint();
      const LinkedMetamodel& partial = *partialResults[place];
      if (!admits(partial, option)) continue;
      auto linked = partial.clone();
      if (linked->linkMetamodel(option)) results.push_back(std::move(linked));
    }
  }
  return results;
}

}  // namespace

LinkedMetamodels linkOptions(const std::shared_ptr<LinkedMetamodel>& root,
                             const OptionsByName& optionsByName) {
  LinkedMetamodels partialResults{root};
  for (const auto& [name, options] : optionsByName) {
    partialResults = options.size() == 1 ? linkOnly(std::move(partialResults), options.front())
                                         : linkEach(partialResults, options);
    if (partialResults.empty())
      tarn::reportException(tarn_evo::messages::ConflictingDependencies());
  }
  return partialResults;
}

}  // namespace tarn::evolution::pathfinder
