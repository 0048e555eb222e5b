#include "catalogue/explanation/explanation.hpp"

#include <algorithm>
#include <cstdint>

#include "catalogue/explanation/blocking_set.hpp"
#include "catalogue/explanation/explanation_notes.hpp"
#include "catalogue/explanation/inconsistent_selection.hpp"
#include "catalogue/explanation/linking_obstacle.hpp"
#include "catalogue/explanation/missing_chain.hpp"
#include "catalogue/explanation/nearest_baseline.hpp"
#include "catalogue/explanation/posed_question.hpp"
#include "catalogue/explanation/requirement_clash.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::BaselineHop;
using pathfinder::Hop;
using pathfinder::Metamodel;
using pathfinder::VersionBaseline;
using pathfinder::VersionId;
using pathfinder::VersionRepository;

namespace {

class Explaining {
 public:
  Explaining(BrowsableRepository& content, const Question& question, std::size_t budget,
             const pathfinder::SearchLimits& limits)
      : question_(question),
        budget_(budget),
        deadline_(limits.deadline),
        inquiry_(content, limits) {}

  Explanation run() {
    UnknownEntries unknown = findUnknown(inquiry_.content(), question_);
    if (!unknown.entries.empty()) {
      result_.reason = std::move(unknown);
    } else if (question_.from != question_.to) {
      explainKnown();
    }
    for (const Metamodel& metamodel : inquiry_.repository().hidden()) {
      result_.unlinkable.push_back(explainUnlinkable(inquiry_, metamodel));
    }
    result_.notes = collectNotes(inquiry_.content(), result_);
    result_.questions = inquiry_.questions();
    result_.stopped = inquiry_.stopped();
    return std::move(result_);
  }

 private:
  void explainKnown() {
    if (auto path = inquiry_.findPath(question_)) {
      reportPath(*std::move(path));
      return;
    }
    const SelectedMetamodels from = lookUp(question_.from);
    const SelectedMetamodels goals = lookUp(question_.to);
    if (!isLinkingBounded() && explainWithoutLinking(from, goals)) return;
    if (auto inconsistency = findInconsistency(inquiry_, QuestionSide::From, from)) {
      result_.reason = *std::move(inconsistency);
      return;
    }
    auto inconsistency = findInconsistency(inquiry_, QuestionSide::To, goals);
    std::vector<VersionBaseline> sources = inquiry_.repository().combine(question_.from);
    const std::vector<VersionBaseline> targets = inconsistency
                                                     ? std::vector<VersionBaseline>()
                                                     : inquiry_.repository().combine(question_.to);
    const Direction direction =
        targets.empty() ? commonDirection(heldBy(sources.front()), goals)
                        : inquiry_.repository().computeDirection(sources.front(), targets.front());
    HopGraphs graphs(inquiry_, direction);
    PosedQuestion posed{.inquiry = &inquiry_,
                        .graphs = &graphs,
                        .direction = direction,
                        .sources = std::move(sources),
                        .goals = goals};
    findStarts(posed);
    const auto blocked = inquiry_.pose(question_.from, question_.to, direction);
    posed.blocked = blocked.get();
    if (inconsistency) {
      result_.reason = *std::move(inconsistency);
    } else {
      explainImpassable(
          posed, [&] { return inquiry_.ask(posed.sources, targets, Direction::Unknown).path; });
    }
    inquiry_.allow(budget_ - std::min(budget_, spent_), deadline_);
    result_.nearest = findNearestBaseline(posed);
  }

  /// Whether the two selections are linked and combined without a product of variants.
  bool isLinkingBounded() {
    try {
      return inquiry_.repository().tryCombine(question_.from) &&
             inquiry_.repository().tryCombine(question_.to);
    } catch (const ConflictingDependencies&) {
      return true;
    }
  }

  /// Explains a question of which only the path finder can tell what may be held; false when it is
  /// of another kind than it can be asked about.
  bool explainWithoutLinking(const SelectedMetamodels& from, const SelectedMetamodels& goals) {
    const Direction direction = commonDirection(from, goals);
    const auto blocked = inquiry_.pose(question_.from, question_.to, direction);
    if (inquiry_.stopped()) return blameAll(goals);
    if (!blocked) return explainInconsistentSource(from);
    if (!blocked->isClosed()) return false;
    auto source = findCheapest(*blocked, from);
    if (inquiry_.stopped()) return blameAll(goals);
    if (!source) return false;
    HopGraphs graphs(inquiry_, direction);
    PosedQuestion posed{.inquiry = &inquiry_,
                        .graphs = &graphs,
                        .direction = direction,
                        .sources = {std::move(source->baseline)},
                        .goals = goals,
                        .mayLink = false,
                        .blocked = blocked.get()};
    findStarts(posed);
    if (auto clash = findClashOfNeeds(goals)) {
      result_.reason = InconsistentSelection{QuestionSide::To, {}, std::move(clash), {}};
    } else {
      explainImpassable(posed, [&]() -> std::optional<Path> {
        const auto free = inquiry_.pose(question_.from, question_.to, Direction::Unknown);
        auto found = free ? findCheapest(*free, goals) : std::nullopt;
        if (!found) return std::nullopt;
        return std::move(found->path);
      });
    }
    inquiry_.allow(budget_ - std::min(budget_, spent_), deadline_);
    result_.nearest = findNearestBaseline(posed);
    return true;
  }

  /// What is known when a limit is reached before any part of the question was asked.
  bool blameAll(const SelectedMetamodels& goals) {
    NeverTogether all{.names = {}, .isMinimal = false};
    for (const auto& [name, goal] : goals) all.names.push_back(name);
    result_.reason = std::move(all);
    return true;
  }

  bool explainInconsistentSource(const SelectedMetamodels& from) {
    auto clash = findClashOfNeeds(from);
    // What leads back to its own name may stand back.
    if (!clash || clash->parties.size() == 1) return false;
    result_.reason = InconsistentSelection{QuestionSide::From, {}, std::move(clash), {}};
    return true;
  }

  using Nearest = pathfinder::BlockedQuestion::Nearest;

  /// The way to a baseline that holds some versions. None when a limit is reached.
  std::optional<Nearest> findCheapest(pathfinder::BlockedQuestion& blocked,
                                      const SelectedMetamodels& versions) {
    const auto isHeld = [&](const Metamodel& end) -> std::optional<std::uint64_t> {
      const auto wanted = versions.find(end.name);
      if (wanted != versions.end() && wanted->second.version != end.version) return std::nullopt;
      return 0;
    };
    inquiry_.allow(1, deadline_);
    return inquiry_.within([&](const pathfinder::SearchLimits& limits) {
      return blocked.findNearest({isHeld}, limits);
    });
  }

  std::optional<Clash> findClashOfNeeds(const SelectedMetamodels& selection) {
    Given given;
    for (const auto& [name, metamodel] : selection) given[name] = {metamodel};
    return RequirementClashes(inquiry_.repository(), RequirementClashes::OfDependencies)
        .find(given);
  }

  static SelectedMetamodels heldBy(const VersionBaseline& baseline) {
    SelectedMetamodels result;
    for (const auto& [name, linked] : baseline.metamodels) result.emplace(name, *linked);
    return result;
  }

  SelectedMetamodels lookUp(const Selection& selection) {
    SelectedMetamodels result;
    for (const auto& [name, version] : selection) {
      if (auto found = inquiry_.content().getMetamodel(name, version)) {
        result.emplace(name, *std::move(found));
      }
    }
    return result;
  }

  /// As `VersionRepository::computeDirection` would find it if both were baselines.
  Direction commonDirection(const SelectedMetamodels& source, const SelectedMetamodels& goals) {
    Direction result = Direction::Unknown;
    for (const auto& [name, goal] : goals) {
      const auto held = source.find(name);
      if (held == source.end()) continue;
      const Direction direction = inquiry_.repository().getDirection(held->second, goal);
      if (direction == Direction::Equal || direction == Direction::Unknown) continue;
      if (VersionRepository::areDirectionsInconsistent(result, direction)) {
        return Direction::Unknown;
      }
      result = direction;
    }
    return result;
  }

  void reportPath(Path path) {
    if (inquiry_.repository().hidesUnlinkable()) {
      result_.reason = PathBesideUnlinkable{std::move(path)};
    } else {
      result_.reason = PathExists{std::move(path)};
    }
  }

  /// `askInAnyDirection` returns the path in which hops of both directions count.
  template <class AskInAnyDirection>
  void explainImpassable(const PosedQuestion& posed, const AskInAnyDirection& askInAnyDirection) {
    MissingChains missing{posed.direction, findMissingChains(posed)};
    const bool mayBeDirection =
        std::none_of(missing.chains.begin(), missing.chains.end(),
                     [](const MissingChain& chain) { return chain.chainInAnyDirection.empty(); });
    if (mayBeDirection && posed.direction != Direction::Unknown) {
      inquiry_.allow(1, deadline_);
      if (std::optional<Path> path = askInAnyDirection()) {
        AgainstDirection reason = reportAgainst(posed.direction, *std::move(path));
        for (const Hop& hop : reason.against) noteWithoutOrder(hop);
        result_.reason = std::move(reason);
        return;
      }
    }
    if (!missing.chains.empty()) {
      for (const MissingChain& chain : missing.chains) {
        for (const Hop& hop : chain.chainInAnyDirection) noteWithoutOrder(hop);
      }
      result_.reason = std::move(missing);
      return;
    }
    const std::size_t before = inquiry_.questions();
    inquiry_.allow(budget_ / 2, halfwayToDeadline());
    result_.reason = explainBlocking(posed);
    spent_ = inquiry_.questions() - before;
  }

  std::optional<Inquiry::TimePoint> halfwayToDeadline() const {
    if (!deadline_) return std::nullopt;
    const Inquiry::TimePoint now = std::chrono::steady_clock::now();
    return std::min(*deadline_, now + (*deadline_ - now) / 2);
  }

  void noteWithoutOrder(const Hop& hop) {
    for (const VersionId* version : {&hop.from, &hop.to}) {
      if (version->isSemVer()) continue;
      if (inquiry_.content().getEquivalentSemVer(hop.name, version->getText())) continue;
      const NamedVersion named{hop.name, *version};
      auto& known = result_.withoutOrder;
      if (std::find(known.begin(), known.end(), named) == known.end()) known.push_back(named);
    }
  }

  AgainstDirection reportAgainst(Direction direction, Path path) {
    AgainstDirection result{direction, std::move(path), {}};
    for (const BaselineHop& step : result.path) {
      for (const auto& [name, hop] : std::map(step.hops.begin(), step.hops.end())) {
        const Metamodel& before = *step.from.metamodels.at(name);
        const Metamodel& after = *step.to.metamodels.at(name);
        const Direction hopDirection = inquiry_.repository().getDirection(before, after);
        if (VersionRepository::areDirectionsInconsistent(direction, hopDirection)) {
          result.against.push_back(hop);
        }
      }
    }
    return result;
  }

  const Question& question_;
  const std::size_t budget_;
  const std::optional<Inquiry::TimePoint> deadline_;
  std::size_t spent_ = 0;
  Inquiry inquiry_;
  Explanation result_;
};

}  // namespace

Explanation explain(BrowsableRepository& repository, const Question& question, std::size_t budget) {
  return explain(repository, question, budget, {});
}

Explanation explain(BrowsableRepository& repository, const Question& question, std::size_t budget,
                    const pathfinder::SearchLimits& limits) {
  return Explaining(repository, question, budget, limits).run();
}

}  // namespace tarn::evolution::catalogue
