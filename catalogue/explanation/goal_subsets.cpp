// Implicit hitting sets, as in Reiter's diagnosis: the goals given up must have a member in every
// set of goals that block one another. Of these sets some are known; the smallest sets that hit
// them all are tried, and one that does not help shows another blocking set among the goals kept,
// which is minimised by leaving out goal by goal. Hitting sets are listed by branching over the
// members of the first set that is missed.
//
// Rests on this: what can be reached with some goals can be reached with fewer. One question for
// each choice, and one for each goal of a new blocking set. docs/catalogue.md proves that all
// largest sets are found.

#include "catalogue/explanation/goal_subsets.hpp"

#include <algorithm>
#include <iterator>
#include <optional>

namespace tarn::evolution::catalogue {

namespace {

/// Lists the sets of at most so many names that have a name in common with each of some sets.
class HittingSets {
 public:
  HittingSets(const std::vector<Names>& sets, std::size_t size) : sets_(sets), size_(size) {}

  /// No value when there are too many ways to look at.
  std::optional<std::set<Names>> run() {
    Names chosen;
    extend(chosen);
    if (isTooMuch_) return std::nullopt;
    return std::move(found_);
  }

 private:
  static constexpr std::size_t mostVisits = 100'000;

  void extend(Names& chosen) {
    isTooMuch_ |= visits_++ == mostVisits;
    if (isTooMuch_) return;
    const auto missed = std::find_if(sets_.begin(), sets_.end(), [&](const Names& set) {
      return std::none_of(set.begin(), set.end(),
                          [&](const auto& name) { return chosen.contains(name); });
    });
    if (missed == sets_.end()) {
      found_.insert(chosen);
      return;
    }
    if (chosen.size() == size_) return;
    for (const std::u16string& name : *missed) {
      chosen.insert(name);
      extend(chosen);
      chosen.erase(name);
    }
  }

  const std::vector<Names>& sets_;
  const std::size_t size_;
  std::size_t visits_ = 0;
  bool isTooMuch_ = false;
  std::set<Names> found_;
};

class SubsetSearch {
 public:
  explicit SubsetSearch(const PosedQuestion& question) : question_(question) {
    for (const auto& [name, goal] : question.goals) all_.insert(name);
  }

  GoalSubsets run() {
    for (const std::u16string& name : all_) {
      if (isSpent()) return grow();
      const Answer answer = reach({name});
      if (answer.isOpen) return grow();
      if (answer.isAbsent()) blocking_.push_back({name});
    }
    for (std::size_t size = 0; size <= all_.size(); ++size) {
      std::vector<Names> reachable;
      const bool isComplete = tryGivingUp(size, reachable);
      if (!isComplete && reachable.empty()) return grow();
      if (!reachable.empty()) return {std::move(reachable), isComplete, std::move(path_)};
    }
    return {{Names()}, true};
  }

 private:
  bool isSpent() const { return question_.inquiry->isSpent(); }

  Answer reach(const Names& names) {
    Answer answer = question_.reach(restrictTo(question_.goals, names));
    if (answer.path && names.size() > best_.size()) {
      best_ = names;
      path_ = answer.path;
    }
    return answer;
  }

  /// Tries all ways to give up so many goals; false when the questions allowed do not suffice.
  bool tryGivingUp(std::size_t size, std::vector<Names>& reachable) {
    for (bool isComplete = false; !isComplete;) {
      const auto choices = HittingSets(blocking_, size).run();
      if (!choices) return false;
      isComplete = true;
      for (const Names& givenUp : *choices) {
        const Names kept = without(givenUp);
        if (std::find(reachable.begin(), reachable.end(), kept) != reachable.end()) continue;
        if (isSpent()) return false;
        const Answer answer = reach(kept);
        if (answer.isOpen) return false;
        if (answer.path) {
          reachable.push_back(kept);
        } else {
          if (!addBlockingSetIn(kept)) return false;
          isComplete = false;
          break;
        }
      }
    }
    return true;
  }

  Names without(const Names& givenUp) const {
    Names result;
    std::set_difference(all_.begin(), all_.end(), givenUp.begin(), givenUp.end(),
                        std::inserter(result, result.end()));
    return result;
  }

  /// Leaves out of names that block one another what can be left out.
  bool addBlockingSetIn(Names names) {
    for (const std::u16string& name : Names(names)) {
      if (isSpent()) return false;
      names.erase(name);
      const Answer answer = reach(names);
      if (answer.isOpen) return false;
      if (answer.path) names.insert(name);
    }
    blocking_.push_back(std::move(names));
    return true;
  }

  GoalSubsets grow() {
    Names reachable;
    for (const std::u16string& name : all_) {
      if (isSpent()) break;
      reachable.insert(name);
      if (!reach(reachable).path) reachable.erase(name);
    }
    return {{best_}, false, std::move(path_)};
  }

  const PosedQuestion& question_;
  Names all_;
  std::vector<Names> blocking_;
  Names best_;  // the largest set found, the first one of its size, and the way to it
  std::optional<Path> path_;
};

}  // namespace

GoalSubsets findLargestGoalSubsets(const PosedQuestion& question) {
  return SubsetSearch(question).run();
}

SelectedMetamodels restrictTo(const SelectedMetamodels& goals, const Names& names) {
  SelectedMetamodels result;
  for (const std::u16string& name : names) {
    if (const auto goal = goals.find(name); goal != goals.end()) result.insert(*goal);
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
