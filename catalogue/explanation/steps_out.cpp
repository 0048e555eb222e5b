// Minimal steps by conflict-driven growth. A choice of hops that is no step leaves metamodels that
// clash, at the versions that they then have. Whoever makes a step of it by adding hops must move
// one of those of them that stand still, for the others' versions are settled. So to branch over
// the hops of these alone leaves no minimal step out. Versions clash that cannot be linked
// together, or of which one requires another one of the other's name. Choices are tried by their
// size (breadth first), so all smaller steps are known when a choice is looked at, and one that
// contains a step is dropped.
#include "catalogue/explanation/steps_out.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "catalogue/explanation/clash_search.hpp"
#include "catalogue/explanation/linking_obstacle.hpp"
#include "catalogue/explanation/requirement_clash.hpp"
#include "catalogue/explanation/step_stream_writer.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::BaselineHop;
using pathfinder::Hop;
using pathfinder::LockstepHop;
using pathfinder::Metamodel;
using pathfinder::VersionBaseline;
using pathfinder::VersionRepository;

namespace {

/// Which targets can be linked, and why others cannot.
class Targets {
 public:
  explicit Targets(BrowsableRepository& repository) : repository_(repository) {}

  bool areLinkable(const Metamodel& target) {
    try {
      repository_.getLinkedMetamodels(target);
      return true;
    } catch (const ConflictingDependencies&) {
      const bool isNew = std::find(refused_.begin(), refused_.end(), target) == refused_.end();
      if (isNew) refused_.push_back(target);
      return false;
    }
  }

  std::vector<Unlinkable> explainRefused() {
    Inquiry inquiry(repository_, {});
    std::vector<Unlinkable> result;
    for (const Metamodel& target : refused_) result.push_back(explainUnlinkable(inquiry, target));
    return result;
  }

 private:
  BrowsableRepository& repository_;
  std::vector<Metamodel> refused_;
};

/// A hop with the descriptor of its target.
struct OfferedMove {
  Hop hop;
  Metamodel target;
};

/// The moves that each metamodel of a baseline can make, by ascending name. One that leads to where
/// it starts is none.
using Moves = std::map<std::u16string, std::vector<OfferedMove>>;

Moves movesOut(BrowsableRepository& repository, const VersionBaseline& baseline,
               VersionRepository::Direction direction, Targets& targets) {
  Moves moves;
  for (const auto& [name, held] : baseline.metamodels) {
    std::vector<Hop> hops;
    repository.findHops(name, held->version, hops);
    for (const Hop& hop : hops) {
      const auto target = repository.getMetamodel(name, hop.to);
      if (!target || target->version == held->version) continue;
      const auto hopDirection = repository.getDirection(*held, *target);
      if (VersionRepository::areDirectionsInconsistent(direction, hopDirection)) continue;
      if (targets.areLinkable(*target)) moves[name].push_back({hop, *target});
    }
  }
  return moves;
}

/// For each name that moves, which of its moves it makes.
using MoveChoice = std::map<std::u16string, std::size_t>;

bool includesChoice(const MoveChoice& whole, const MoveChoice& part) {
  return std::includes(whole.begin(), whole.end(), part.begin(), part.end());
}

class MinimalStepSearch {
 public:
  MinimalStepSearch(BrowsableRepository& repository, const VersionBaseline& baseline, Moves moves)
      : repository_(repository), baseline_(baseline), moves_(std::move(moves)) {}

  /// Whether the search has come to its end; each combination tried is taken off `allowed`.
  bool run(std::uint64_t& allowed) {
    std::set<MoveChoice> choices;
    for (const auto& [name, moves] : moves_) grow({}, name, choices);
    while (!choices.empty()) {
      std::set<MoveChoice> larger;
      for (const MoveChoice& choice : choices) {
        if (hasStep(choice)) continue;
        if (allowed == 0) return false;
        --allowed;
        tryChoice(choice, larger);
      }
      choices = std::move(larger);
    }
    return true;
  }

  std::vector<BaselineHop> takeSteps() { return std::move(steps_); }

 private:
  bool hasStep(const MoveChoice& choice) const {
    return std::any_of(minimal_.begin(), minimal_.end(),
                       [&](const MoveChoice& step) { return includesChoice(choice, step); });
  }

  void grow(const MoveChoice& choice, const std::u16string& name,
            std::set<MoveChoice>& larger) const {
    const auto found = moves_.find(name);
    if (found == moves_.end() || choice.contains(name)) return;
    for (std::size_t move = 0; move < found->second.size(); ++move) {
      MoveChoice grown = choice;
      grown.emplace(name, move);
      larger.insert(std::move(grown));
    }
  }

  void tryChoice(const MoveChoice& choice, std::set<MoveChoice>& larger) {
    LockstepHop hops;
    for (const auto& [name, move] : choice) hops.emplace(name, moves_.at(name)[move].hop);
    std::vector<VersionBaseline> reached = repository_.createTargetBaseline(baseline_, hops);
    for (VersionBaseline& to : reached) {
      steps_.emplace_back(baseline_, std::move(to), LockstepHop(hops));
    }
    if (!reached.empty()) {
      minimal_.push_back(choice);
      return;
    }
    for (const std::u16string& name : clashing(choice)) grow(choice, name, larger);
  }

  /// The names of which one must move if more hops are to make a step of the choice.
  std::vector<std::u16string> clashing(const MoveChoice& choice) {
    std::map<std::u16string, const Metamodel*> held;
    for (const auto& [name, metamodel] : baseline_.metamodels) held.emplace(name, metamodel.get());
    for (const auto& [name, move] : choice) held[name] = &moves_.at(name)[move].target;
    std::vector<Candidates> candidates;
    candidates.reserve(held.size());
    for (const auto& [name, metamodel] : held) {
      candidates.push_back({name, repository_.getLinkedMetamodels(*metamodel)});
    }
    if (auto names = findClashingNames(candidates); !names.empty()) return names;
    if (const auto excluded = findExcluded(repository_, held)) return excluded->parties;
    // Something is missing, or what enters is at fault.
    std::vector<std::u16string> all;
    for (const auto& [name, moves] : moves_) all.push_back(name);
    return all;
  }

  BrowsableRepository& repository_;
  const VersionBaseline& baseline_;
  const Moves moves_;
  std::vector<MoveChoice> minimal_;
  std::vector<BaselineHop> steps_;
};

/// The next choice as a mixed-radix number, the first name being the least significant digit, the
/// digit 0 leaving it where it is. Whether there is one.
bool advance(const Moves& moves, std::map<std::u16string, std::size_t>& digits) {
  for (const auto& [name, choices] : moves) {
    std::size_t& digit = digits[name];
    if (++digit <= choices.size()) return true;
    digit = 0;
  }
  return false;
}

/// Whether all choices have been tried.
template <class Use>
bool forEachStep(BrowsableRepository& repository, const VersionBaseline& baseline,
                 const Moves& moves, std::uint64_t limit, const Use& use) {
  std::map<std::u16string, std::size_t> digits;
  for (std::uint64_t tried = 0; advance(moves, digits); ++tried) {
    if (tried == limit) return false;
    LockstepHop hops;
    for (const auto& [name, digit] : digits) {
      if (digit > 0) hops.emplace(name, moves.at(name)[digit - 1].hop);
    }
    for (VersionBaseline& to : repository.createTargetBaseline(baseline, hops)) {
      use(BaselineHop(baseline, std::move(to), LockstepHop(hops)));
    }
  }
  return true;
}

}  // namespace

StepsOut findMinimalSteps(BrowsableRepository& repository, const Selection& selection,
                          const StepSearch& search) {
  StepsOut result;
  Targets targets(repository);
  std::uint64_t allowed = search.limit;
  for (const VersionBaseline& baseline : repository.combine(selection)) {
    MinimalStepSearch steps(repository, baseline,
                            movesOut(repository, baseline, search.direction, targets));
    if (!steps.run(allowed)) result.isComplete = false;
    result.listings.push_back(makeListing(repository, baseline, steps.takeSteps()));
  }
  result.unlinkable = targets.explainRefused();
  return result;
}

StepsOut streamSteps(BrowsableRepository& repository, const Selection& selection,
                     const StepSearch& search, StepForm form, Colouring colouring,
                     const std::function<void(const std::string& text)>& write) {
  StepsOut result;
  Targets targets(repository);
  const std::vector<VersionBaseline> baselines = repository.combine(selection);
  StepStreamWriter writer(repository, baselines, form, colouring, write);
  for (const VersionBaseline& baseline : baselines) {
    writer.beginBaseline();
    result.listings.push_back({baseline, {}});
    const Moves moves = movesOut(repository, baseline, search.direction, targets);
    const bool isWhole = forEachStep(repository, baseline, moves, search.limit,
                                     [&](const BaselineHop& step) { writer.write(step); });
    result.isComplete = result.isComplete && isWhole;
  }
  result.unlinkable = targets.explainRefused();
  writer.finish(result);
  return result;
}

}  // namespace tarn::evolution::catalogue
