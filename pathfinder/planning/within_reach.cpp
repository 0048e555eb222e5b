#include "pathfinder/planning/within_reach.hpp"

#include <algorithm>
#include <exception>
#include <unordered_map>
#include <vector>

#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/version_bounds.hpp"
#include "pathfinder/search/hop_collection.hpp"

namespace tarn::evolution::pathfinder {

namespace {

using Verdict = SearchAnswer::Verdict;

class ReachSearch {
 public:
  ReachSearch(const SearchQuestion& question, SpaceSurvey& survey, const ReachTest& test)
      : question_(question), survey_(survey), test_(test) {}

  bool throwFirst() {
    survey_.surveyEverything();
    if (!survey_.isFit()) return false;
    bool areAllKnown = true;
    for (const SurveyedFault& fault : faultsWithinBounds()) {
      const Verdict verdict = reach(*fault.holding);
      if (verdict == Verdict::Found) raise(fault);
      areAllKnown &= verdict != Verdict::Unsettled;
    }
    return areAllKnown;
  }

 private:
  /// Those in versions that may be held, as far as any two versions tell.
  std::vector<SurveyedFault> faultsWithinBounds() {
    std::vector<SurveyedFault> faults = survey_.faults();
    if (faults.empty()) return faults;
    const auto space = survey_.makeSpace();
    const AllVersionBounds bounds = computeVersionBounds(*space, Compatibility(*space));
    std::erase_if(faults, [&](const SurveyedFault& fault) {
      return !bounds[fault.holding->index].isReachable;
    });
    return faults;
  }

  /// Whether some baseline within reach holds a version.
  Verdict reach(const SurveyedVersion& version) {
    if (isInSource(version)) return Verdict::Found;
    const auto [known, isNew] = reached_.try_emplace(&version);
    if (isNew) known->second = askForPathTo(version);
    return known->second;
  }

  bool isInSource(const SurveyedVersion& version) const {
    return std::any_of(question_.sources.begin(), question_.sources.end(),
                       [&](const VersionBaseline& source) {
                         const auto held = source.metamodels.find(*version.name->text);
                         return held != source.metamodels.end() &&
                                static_cast<const Metamodel&>(*held->second) == *version.descriptor;
                       });
  }

  Verdict askForPathTo(const SurveyedVersion& version) const {
    std::vector<VersionBaseline> holding(version.linked->size());
    for (std::size_t i = 0; i < holding.size(); ++i) {
      holding[i].metamodels.emplace(*version.name->text, (*version.linked)[i]);
    }
    return test_({question_.host, question_.sources, holding, question_.direction, question_.known,
                  question_.tried});
  }

  void raise(const SurveyedFault& fault) const {
    if (fault.exception) std::rethrow_exception(fault.exception);
    collectHops(question_.host, question_.direction, *fault.holding->name->text,
                *fault.holding->linked->front());
  }

  const SearchQuestion& question_;
  SpaceSurvey& survey_;
  const ReachTest& test_;
  std::unordered_map<const SurveyedVersion*, Verdict> reached_;
};

}  // namespace

bool throwWhatIsWithinReach(const SearchQuestion& question, SpaceSurvey& survey,
                            const ReachTest& test) {
  return ReachSearch(question, survey, test).throwFirst();
}

}  // namespace tarn::evolution::pathfinder
