// Goes through all choices of one candidate of each party. In each, two candidates hold different
// versions under some name. Unless what is told already says so, the nearest name is told of which
// no version suits both.

#include "catalogue/explanation/scattered_clash.hpp"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "catalogue/explanation/candidate_requirements.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::LinkedMetamodel;

namespace {

using Linked = std::shared_ptr<LinkedMetamodel>;

constexpr std::size_t mostChoicesTried = 2'000;
constexpr std::size_t mostDisagreements = 20;  // on which two candidates disagree

class ScatteredClash {
 public:
  ScatteredClash(pathfinder::VersionRepository& repository, const std::vector<Candidates>& parties)
      : repository_(repository), parties_(parties), told_(parties.size()) {}

  std::vector<Requirement> run() {
    Choice choice(parties_.size(), 0);
    std::size_t choices = 0;
    do {
      if (!isTold(choice)) tell(choice);
    } while (++choices < mostChoicesTried && advance(choice));
    return flattened();
  }

 private:
  using Choice = std::vector<std::size_t>;  // a candidate for each party

  /// What two candidates ask of one name.
  struct Disagreement {
    std::size_t left;  ///< party
    std::size_t right;
    std::vector<Requirement> ofLeft;
    std::vector<Requirement> ofRight;
    std::size_t length;
  };

  bool advance(Choice& choice) const {
    for (std::size_t party = choice.size(); party-- > 0;) {
      if (++choice[party] < parties_[party].linked.size()) return true;
      choice[party] = 0;
    }
    return false;
  }

  const Linked& candidate(const Choice& choice, std::size_t party) const {
    return parties_[party].linked[choice[party]];
  }

  bool isTold(const Choice& choice) {
    for (std::size_t left = 0; left < choice.size(); ++left) {
      for (std::size_t right = left + 1; right < choice.size(); ++right) {
        for (const Requirement& one : told_[left][choice[left]]) {
          for (const Requirement& other : told_[right][choice[right]]) {
            if (exclude(choice, left, one, right, other)) return true;
          }
        }
      }
    }
    return false;
  }

  bool exclude(const Choice& choice, std::size_t left, const Requirement& one, std::size_t right,
               const Requirement& other) {
    if (one.name != other.name) return false;
    const auto suitOne = admittedBy(repository_, one, candidate(choice, left));
    const auto suitOther = admittedBy(repository_, other, candidate(choice, right));
    return std::none_of(suitOne.begin(), suitOne.end(), [&](const auto& version) {
      return std::find(suitOther.begin(), suitOther.end(), version) != suitOther.end();
    });
  }

  void tell(const Choice& choice) {
    const std::vector<Disagreement> found = disagreements(choice);
    for (const Disagreement& each : found) {
      for (const Requirement& one : each.ofLeft) {
        for (const Requirement& other : each.ofRight) {
          if (!exclude(choice, each.left, one, each.right, other)) continue;
          told_[each.left][choice[each.left]].push_back(one);
          told_[each.right][choice[each.right]].push_back(other);
          return;
        }
      }
    }
    if (found.empty()) return;
    const Disagreement& nearest = found.front();
    told_[nearest.left][choice[nearest.left]].push_back(nearest.ofLeft.front());
    told_[nearest.right][choice[nearest.right]].push_back(nearest.ofRight.front());
  }

  /// The nearest first.
  std::vector<Disagreement> disagreements(const Choice& choice) const {
    std::vector<Disagreement> result;
    for (std::size_t left = 0; left < choice.size(); ++left) {
      for (std::size_t right = left + 1; right < choice.size(); ++right) {
        for (const std::u16string& name : namesBetween(choice, left, right)) {
          if (result.size() == mostDisagreements) break;
          Disagreement& each = result.emplace_back();
          each = {left, right, requirementsOf(candidate(choice, left), name),
                  requirementsOf(candidate(choice, right), name), 0};
          each.length = each.ofLeft.front().chain.size() + each.ofRight.front().chain.size();
        }
      }
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const auto& one, const auto& other) { return one.length < other.length; });
    return result;
  }

  /// Under which two candidates hold something different.
  std::set<std::u16string> namesBetween(const Choice& choice, std::size_t left,
                                        std::size_t right) const {
    const Linked& one = candidate(choice, left);
    const Linked& other = candidate(choice, right);
    std::set<std::u16string> result;
    const auto add = [&](const std::u16string& name) {
      const LinkedMetamodel* const ofOther = heldBy(other, name);
      if (ofOther != nullptr && ofOther != heldBy(one, name)) result.insert(name);
    };
    add(one->name);
    for (const auto& [name, linked] : one->linkedMetamodels) add(name);
    return result;
  }

  std::vector<Requirement> flattened() const {
    std::vector<Requirement> result;
    for (const auto& ofCandidates : told_) {
      std::vector<Requirement> ofParty;
      for (const auto& [candidate, requirements] : ofCandidates) {
        for (const Requirement& requirement : requirements) addRequirement(requirement, ofParty);
      }
      result.insert(result.end(), ofParty.begin(), ofParty.end());
    }
    return result;
  }

  pathfinder::VersionRepository& repository_;
  const std::vector<Candidates>& parties_;
  std::vector<std::map<std::size_t, std::vector<Requirement>>> told_;  // by party and candidate
};

}  // namespace

std::vector<Requirement> findScatteredRequirements(pathfinder::VersionRepository& repository,
                                                   const std::vector<Candidates>& parties) {
  return ScatteredClash(repository, parties).run();
}

}  // namespace tarn::evolution::catalogue
