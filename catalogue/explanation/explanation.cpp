#include "catalogue/explanation/explanation.hpp"

#include <algorithm>
#include <cstdint>

#include "catalogue/explanation/blocking_set.hpp"
#include "catalogue/explanation/explanation_notes.hpp"
#include "catalogue/explanation/hops_against.hpp"
#include "catalogue/explanation/inconsistent_selection.hpp"
#include "catalogue/explanation/linking_obstacle.hpp"
#include "catalogue/explanation/missing_chain.hpp"
#include "catalogue/explanation/nearest_baseline.hpp"
#include "catalogue/explanation/own_name.hpp"
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
    auto listed = listBaselines(from);
    const auto targets = listBaselines(goals);
    if (!listed || !targets) {
      explainWithoutLinking(from, goals, std::move(listed));
      return;
    }
    if (auto inconsistency = findInconsistency(inquiry_, QuestionSide::From, from)) {
      result_.reason = *std::move(inconsistency);
      return;
    }
    std::vector<VersionBaseline> sources = *std::move(listed);
    auto inconsistency = findInconsistency(inquiry_, QuestionSide::To, goals);
    const Direction direction = targets->empty() ? commonDirection(heldBy(sources.front()), goals)
                                                 : inquiry_.repository().computeDirection(
                                                       sources.front(), targets->front());
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
          posed, [&] { return inquiry_.ask(posed.sources, *targets, Direction::Unknown).path; });
    }
    inquiry_.allow(budget_ - std::min(budget_, spent_), deadline_);
    result_.nearest = findNearestBaseline(posed);
  }

  using Baselines = std::vector<VersionBaseline>;

  /// The baselines that a selection stands for: none if it is inconsistent. No value if linking and
  /// combining it would make a product of variants.
  std::optional<Baselines> listBaselines(const SelectedMetamodels& selection) {
    bool canBeLinked = true;
    Selection versions;
    for (const auto& [name, metamodel] : selection) {
      const std::optional<bool> isLinkable = inquiry_.repository().isLinkable(metamodel);
      if (!isLinkable) return std::nullopt;
      canBeLinked &= *isLinkable;
      versions.emplace(name, metamodel.version);
    }
    return canBeLinked ? inquiry_.repository().tryCombine(versions) : Baselines();
  }

  /// Explains a question of which at most the path finder can tell what may be held. `sources`: no
  /// value if they cannot be listed.
  void explainWithoutLinking(const SelectedMetamodels& from, const SelectedMetamodels& goals,
                             std::optional<Baselines> sources) {
    const bool isSourceKnown = sources && !sources->empty();
    const auto known = inquiry_.findDirection(question_);
    const Direction direction =
        known ? *known : commonDirection(isSourceKnown ? heldBy(sources->front()) : from, goals);
    const auto blocked = inquiry_.pose(question_.from, question_.to, direction);
    HopGraphs graphs(inquiry_, direction);
    PosedQuestion posed{.inquiry = &inquiry_,
                        .graphs = &graphs,
                        .direction = direction,
                        .goals = goals,
                        .mayLink = false,
                        .selected = &question_.from,
                        .blocked = blocked.get()};
    if (blocked && blocked->isClosed()) {
      if (auto source = findCheapest(*blocked, from)) {
        posed.sources.push_back(std::move(source->baseline));
      }
    } else if (!inquiry_.stopped()) {
      if (!isSourceKnown && explainInconsistentSource(from, sources.has_value())) return;
      if (sources) posed.sources = *std::move(sources);
    }
    if (inquiry_.stopped()) {
      blameAll(goals);
    } else {
      explainPosed(posed, from);
    }
  }

  void explainPosed(PosedQuestion& posed, const SelectedMetamodels& from) {
    result_.hasTooManyVariants = !posed.canAskForNearest() || posed.sources.empty();
    if (posed.sources.empty()) {
      findStartsOf(from, posed);
    } else {
      findStarts(posed);
    }
    if (auto clash = findClashOfNeeds(posed.goals)) {
      result_.reason = InconsistentSelection{QuestionSide::To, {}, std::move(clash), {}};
    } else {
      explainImpassable(posed, [&] { return pathInAnyDirection(posed.goals); });
    }
    if (posed.sources.empty()) return;
    inquiry_.allow(budget_ - std::min(budget_, spent_), deadline_);
    result_.nearest = findNearestBaseline(posed);
  }

  /// No value as well when the path finder cannot be asked.
  std::optional<Path> pathInAnyDirection(const SelectedMetamodels& goals) {
    const auto free = inquiry_.pose(question_.from, question_.to, Direction::Unknown);
    if (!free || !free->isClosed()) return std::nullopt;
    auto found = findCheapest(*free, goals);
    if (!found) return std::nullopt;
    return std::move(found->path);
  }

  /// What is known when a limit is reached before any part of the question was asked.
  void blameAll(const SelectedMetamodels& goals) {
    NeverTogether all{.names = {}, .isMinimal = false};
    for (const auto& [name, goal] : goals) all.names.push_back(name);
    result_.reason = std::move(all);
  }

  /// Whether the source contradicts itself.
  bool explainInconsistentSource(const SelectedMetamodels& from, bool mayLink) {
    if (mayLink) {
      auto inconsistency = findInconsistency(inquiry_, QuestionSide::From, from);
      if (!inconsistency) return false;
      result_.reason = *std::move(inconsistency);
      return true;
    }
    auto clash = findClashOfNeeds(from);
    if (!clash) return false;
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

  /// None where one of the parties may have what it needs of itself stand back.
  std::optional<Clash> findClashOfNeeds(const SelectedMetamodels& selection) {
    LinkableRepository& repository = inquiry_.repository();
    Given given;
    for (const auto& [name, metamodel] : selection) given[name] = {metamodel};
    auto clash = RequirementClashes(repository, RequirementClashes::OfDependencies).find(given);
    const bool isCertain =
        clash && std::none_of(clash->parties.begin(), clash->parties.end(), [&](const auto& party) {
          const auto selected = selection.find(party);
          return selected != selection.end() && leadsToOwnName(repository, selected->second);
        });
    return isCertain ? std::move(clash) : std::nullopt;
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
    std::vector<Hop> against = hopsAgainst(inquiry_.repository(), direction, path);
    return {direction, std::move(path), std::move(against)};
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
