#include "repository_session.hpp"

#include <algorithm>

#include "pathfinder/planning/goal_directed_search.hpp"
#include "pathfinder/search/exhaustive_search.hpp"
#include "support/brute_force.hpp"
#include "support/engine_question.hpp"

namespace fuzz {

using namespace test;

namespace {

constexpr int mostOperations = 24;
constexpr int mostCalls = 10000;
constexpr int mostAdditions = 6;
constexpr std::size_t mostSteps = 1000;  // that the model is to try for one question

PlainModel::Baseline linksOf(const PlainModel& model, const LinkedMetamodel& linked) {
  return model.baselineOf(VersionBaseline{linked.linkedMetamodels});
}

bool agree(const PlainModel::Baseline& left, const PlainModel::Baseline& right) {
  return std::all_of(left.begin(), left.end(), [&](const auto& entry) {
    const auto other = right.find(entry.first);
    return other == right.end() || other->second == entry.second;
  });
}

bool includes(const PlainModel::Baseline& whole, const PlainModel::Baseline& part) {
  return std::includes(whole.begin(), whole.end(), part.begin(), part.end());
}

/// The model's places of a selection; nothing when a version is unknown.
std::optional<PlainModel::Baseline> placesOf(const PlainModel& model, const Selection& selection) {
  PlainModel::Baseline result;
  for (const auto& [name, version] : selection) {
    const auto place = model.find(name, version);
    if (!place) return std::nullopt;
    result[name] = *place;
  }
  return result;
}

/// The model's baselines of a selection; nothing when it has to be refused.
std::optional<std::vector<PlainModel::Baseline>> combined(PlainModel& model,
                                                          const Selection& selection) {
  const auto places = placesOf(model, selection);
  if (!places) return std::nullopt;
  try {
    return model.combine(*places);
  } catch (const PlainModel::Conflict&) {
    return std::nullopt;
  }
}

}  // namespace

void RepositorySession::run() {
  for (int left = mostOperations; left > 0 && !bytes_.isEmpty(); --left) {
    if (calls_ > mostCalls) return;
    runOperation();
  }
}

void RepositorySession::runOperation() {
  using Operation = void (RepositorySession::*)();
  constexpr Operation operations[] = {
      &RepositorySession::askBetweenBaselines,
      &RepositorySession::askBetweenTwoBaselines,
      &RepositorySession::askBetweenSelections,
      &RepositorySession::askToSelection,
      &RepositorySession::askBothEngines,
      &RepositorySession::listSteps,
      &RepositorySession::combineSelection,
      &RepositorySession::linkOneMetamodel,
      &RepositorySession::buildBaseline,
      &RepositorySession::linkClone,
      &RepositorySession::lookUp,
      &RepositorySession::forget,
      &RepositorySession::addHop,
      &RepositorySession::addMetamodel,
      &RepositorySession::failSoon,
  };
  loads_ = 0;
  const Operation operation = operations[bytes_.below(std::size(operations))];
  (this->*operation)();
  if (operation != &RepositorySession::failSoon) callsLeft_ = 0;
}

/// What the cache has to answer, if anything.
std::optional<std::string> RepositorySession::cachedPath(const PathQuestion& question) const {
  for (const Baseline& source : question.sources) {
    for (const Baseline& target : question.targets) {
      if (const auto found = paths_.find({source, target}); found != paths_.end()) {
        return found->second;
      }
    }
  }
  return std::nullopt;
}

/// Expects the path that the cache holds, or else what a fresh repository and the model answer.
void RepositorySession::checkPath(const PathQuestion& question, const Ask& ask) {
  const std::string what = "path from " + model_.describe(question.sources) + " to " +
                           model_.describe(question.targets) + ", " +
                           VersionRepository::getDirectionString(question.direction) + "\n";
  const std::optional<std::string> cached = cachedPath(question);
  const Outcome found = outcomeOf([&] { return ask(repository_); });
  if (loads_ == 0 && cached) {
    if (found.text != failed) check(what + "from the cache", *cached, found.text);
  } else if (found.text != failed) {
    freshly([&](TestRepository& fresh) {
      const std::string expected = outcomeText([&] { return describe(ask(fresh)); });
      check(what + "in a fresh repository", expected, found.text);
    });
    checkAgainstModel(question, found);
  }
  if (found.path) {
    for (const BaselineHop& step : *found.path) remember(step.to);
  }
  history_ += what;
}

void RepositorySession::checkAgainstModel(const PathQuestion& question, const Outcome& found) {
  try {
    const BruteForce best(model_, question.sources, question.targets, question.direction,
                          mostSteps);
    const std::string expected = best.path ? model_.describe(*best.path) : "none";
    check("path by the model", expected, found.text);
    if (best.path && !best.path->empty()) {
      paths_.try_emplace({question.sources[best.source], question.targets[best.target]}, expected);
    }
  } catch (const PlainModel::Conflict&) {
    // What cannot be linked lies within reach, and the model cannot tell whether a search meets it.
    forgetUnlessEmpty(found.path);
  } catch (const BruteForce::TooMany&) {
    forgetUnlessEmpty(found.path);
  }
}

/// Forgets what the cache has stored now, for a target that the model does not know.
void RepositorySession::forgetUnlessEmpty(const Path& path) {
  if (path && !path->empty()) forgetPaths();
}

/// A question that is settled before paths are looked for.
void RepositorySession::checkSettled(const std::string& expected, const Ask& ask) {
  const std::string found = outcomeOf([&] { return ask(repository_); }).text;
  if (found != failed) check("path that needs no search", expected, found);
}

void RepositorySession::askBetweenBaselines() {
  const Baselines sources = someBaselines();
  const Baselines targets = someBaselines();
  const Direction direction = someDirection();
  checkPath({sources, targets, direction}, [&](TestRepository& repository) {
    return repository.findPath(in(repository, sources), in(repository, targets), direction);
  });
}

void RepositorySession::askBetweenTwoBaselines() {
  const Baselines sources = someBaselines();
  const Baselines targets = someBaselines();
  if (sources.empty() || targets.empty()) return;
  const Ask ask = [&](TestRepository& repository) {
    return repository.findPath(in(repository, sources[0]), in(repository, targets[0]));
  };
  if (includes(sources[0], targets[0])) {
    checkSettled("", ask);
  } else {
    checkPath({{sources[0]}, {targets[0]}, model_.direction(sources[0], targets[0])}, ask);
  }
}

/// What is answered when one side of a question has no baselines; null when it has some.
const char* RepositorySession::answerWithout(const std::optional<Baselines>& baselines) {
  if (!baselines) return refused;
  return baselines->empty() ? "none" : nullptr;
}

void RepositorySession::askBetweenSelections() {
  const Selection from = someSelection();
  const Selection to = someSelection();
  const Ask ask = [&](TestRepository& repository) { return repository.findPath(from, to); };
  const auto sources = combined(model_, from);
  const auto targets = combined(model_, to);
  if (from == to) {
    checkSettled("", ask);
  } else if (const char* answer = answerWithout(sources)) {
    checkSettled(answer, ask);
  } else if (const char* other = answerWithout(targets)) {
    checkSettled(other, ask);
  } else {
    checkPath({*sources, *targets, model_.direction(sources->front(), targets->front())}, ask);
  }
}

void RepositorySession::askToSelection() {
  const Baselines sources = someBaselines();
  const Selection to = someSelection();
  const Ask ask = [&](TestRepository& repository) {
    return repository.findPath(in(repository, sources), to);
  };
  const auto targets = combined(model_, to);
  if (const char* answer = answerWithout(targets)) {
    checkSettled(answer, ask);
  } else if (std::find_first_of(targets->begin(), targets->end(), sources.begin(), sources.end()) !=
             targets->end()) {
    checkSettled("", ask);
  } else {
    const Direction direction =
        sources.empty() ? anyDirection : model_.direction(sources.front(), targets->front());
    checkPath({sources, *targets, direction}, ask);
  }
}

/// The two engines agree whatever the size of the question.
void RepositorySession::askBothEngines() {
  const auto sources = in(repository_, someBaselines());
  const auto targets = in(repository_, someBaselines());
  const Direction direction = someDirection();
  const SearchQuestion question{accessTo(repository_), sources, targets,
                                static_cast<tarn::evolution::pathfinder::Direction>(direction)};
  const auto text = [&](const SearchAnswer& answer) {
    if (answer.verdict == SearchAnswer::Verdict::Unsettled) return std::string("unsettled");
    if (answer.verdict == SearchAnswer::Verdict::NoPath) return std::string("none");
    return describe(*answer.target) + " by\n" + describe(Path(answer.steps));
  };
  const std::string expected = outcomeText([&] { return text(searchExhaustively(question)); });
  if (expected == failed || expected == refused) return;
  const std::string found = outcomeText([&] { return text(searchGoalDirected(question)); });
  if (found == failed || found == "unsettled") return;
  check("both engines from " + describe(sources) + " to " + describe(targets) + ", " +
            VersionRepository::getDirectionString(direction),
        expected, found);
}

void RepositorySession::listSteps() {
  const Baselines from = someBaselines();
  if (from.empty()) return;
  const Direction direction = someDirection();
  std::vector<BaselineHop> steps;
  const std::string found = outcomeText([&] {
    steps = repository_.getStepsFrom(known_.at(from[0]), direction);
    return describe(Path(steps));
  });
  if (found == failed) return;
  std::string expected = refused;
  try {
    expected = model_.describe(model_.stepsFrom(from[0], direction));
  } catch (const PlainModel::Conflict&) {
  }
  check("steps from " + model_.describe(from[0]), expected, found);
  for (const BaselineHop& step : steps) remember(step.to);
}

void RepositorySession::combineSelection() {
  const Selection selection = someSelection();
  std::vector<VersionBaseline> baselines;
  const std::string found = outcomeText([&] {
    baselines = repository_.combine(selection);
    return describe(baselines);
  });
  if (found == failed) return;
  const auto expected = combined(model_, selection);
  check("combine", expected ? model_.describe(*expected) : refused, found);
  for (const VersionBaseline& baseline : baselines) remember(baseline);
}

void RepositorySession::linkOneMetamodel() {
  const std::size_t place = bytes_.below(repository_.metamodels.size());
  const Metamodel metamodel = model_.metamodel(place);
  const bool isMadeAnew = bytes_.below(2) == 1;
  std::vector<VersionBaseline> baselines;
  const std::string found = outcomeText([&] {
    if (isMadeAnew) repository_.createLinkedMetamodels(metamodel);
    for (const auto& linked : repository_.getLinkedMetamodels(metamodel.name, metamodel.version)) {
      baselines.push_back(VersionBaseline::create({linked}).value());
    }
    return describe(baselines);
  });
  if (found == failed) return;
  std::string expected = refused;
  try {
    expected = model_.describe(model_.linked(place));
  } catch (const PlainModel::Conflict&) {
  }
  check("link " + brief(metamodel.name, metamodel.version), expected, found);
  for (const VersionBaseline& baseline : baselines) remember(baseline);
}

/// Puts linked metamodels into a baseline, one after the other.
void RepositorySession::buildBaseline() {
  VersionBaseline baseline;
  Baseline plain;
  for (std::size_t left = bytes_.below(5); left > 0; --left) {
    const auto linked = someLinked();
    if (!linked) return;
    const Baseline added = model_.baselineOf(VersionBaseline::create({linked}).value());
    const bool isExpected = agree(plain, added);
    const std::string what = "emplace " + model_.describe(added) + " in " + model_.describe(plain);
    check(what, isExpected ? "1 1" : "0 0",
          printed(baseline.admits(linked)) + " " + printed(baseline.tryEmplace(linked)));
    if (isExpected) plain.insert(added.begin(), added.end());
    check(what, model_.describe(plain), describe(baseline));
    for (const Baseline& other : listed_) {
      check(what, printed(includes(plain, other)), printed(baseline.includes(known_.at(other))));
    }
  }
  if (!plain.empty()) remember(baseline);
}

void RepositorySession::linkClone() {
  const auto one = someLinked();
  const auto other = someLinked();
  if (!one || !other) return;
  const auto clone = one->clone();
  const Baseline before = linksOf(model_, *one);
  Baseline added = model_.baselineOf(VersionBaseline::create({other}).value());
  const bool isExpected = agree(before, added);
  const std::string what = "link " + model_.describe(added) + " to " + model_.describe(before);
  check(what, printed(isExpected), printed(clone->linkMetamodel(other)));
  check(what, model_.describe(before), model_.describe(linksOf(model_, *one)));
  if (!isExpected) return;
  added.insert(before.begin(), before.end());
  check(what, model_.describe(added), model_.describe(linksOf(model_, *clone)));
}

void RepositorySession::lookUp() {
  const Selection selection = someSelection();
  const std::string found = outcomeText([&] {
    std::string text;
    for (const auto& [name, version] : selection) {
      const auto metamodel = repository_.getMetamodel(name, version);
      text += (metamodel ? brief(name, metamodel->version) : brief(name, version) + "?") + " ";
      for (const Metamodel& other : repository_.metamodels) {
        for (const Dependency& dependency : other.dependencies) {
          text += metamodel && repository_.includes(dependency.range, *metamodel) ? "+" : "-";
        }
        if (!metamodel || other.name != name) continue;
        text += VersionRepository::getDirectionString(repository_.getDirection(*metamodel, other));
      }
    }
    return text;
  });
  if (found == failed) return;
  std::string expected;
  for (const auto& [name, version] : selection) {
    const auto place = model_.find(name, version);
    const VersionId shown = place ? model_.metamodel(*place).version : version;
    expected += brief(name, shown) + (place ? " " : "? ");
    for (std::size_t other = 0; other < repository_.metamodels.size(); ++other) {
      for (const Dependency& dependency : model_.metamodel(other).dependencies) {
        const bool isIn = place && model_.includes(dependency.range, model_.metamodel(*place));
        expected += isIn ? "+" : "-";
      }
      if (!place || model_.metamodel(other).name != name) continue;
      expected += VersionRepository::getDirectionString(model_.direction(*place, other));
    }
  }
  check("look-ups", expected, found);
}

/// Paths in the cache stay as they are, unless the host has them forgotten.
void RepositorySession::addHop() {
  if (++additions_ > mostAdditions) return;
  const std::string added = catalogue_.addHop(bytes_);
  repository_.add(added);
  history_ += "add " + added + "\n";
  if (bytes_.below(2) == 1) forgetPaths();
}

void RepositorySession::addMetamodel() {
  if (++additions_ > mostAdditions) return;
  const std::string added = catalogue_.addMetamodel(bytes_);
  repository_.add(added);
  history_ += "add " + added + "\n";
}

/// A callback throws in the next operation, if it comes that far.
void RepositorySession::failSoon() {
  callsLeft_ = 1 + static_cast<int>(bytes_.below(64));
  history_ += "fail at call " + std::to_string(callsLeft_) + "\n";
}

}  // namespace fuzz
