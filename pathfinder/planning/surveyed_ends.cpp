#include "pathfinder/planning/surveyed_ends.hpp"

#include <algorithm>
#include <utility>

#include "pathfinder/linking/covering_link.hpp"

namespace tarn::evolution::pathfinder {

namespace {

bool holdsLinksOf(const VersionBaseline& baseline, const LinkedMetamodel& linked) {
  if (linked.linkedMetamodels.empty()) return true;
  const auto holds = [&](const LinkedMetamodel& link) {
    const auto held = baseline.metamodels.find(link.name);
    return held != baseline.metamodels.end() && held->second.get() == &link;
  };
  // The covering link is asked for its own.
  if (const LinkedMetamodel* covering = coveringLink(linked)) return holds(*covering);
  return std::all_of(linked.linkedMetamodels.begin(), linked.linkedMetamodels.end(),
                     [&](const auto& link) { return holds(*link.second); });
}

}  // namespace

bool bringsInAgainstItself(const LinkedMetamodel& linking, const LinkedMetamodel& linked) {
  const auto& links = linking.linkedMetamodels;
  const auto link = links.find(linked.name);
  return link != links.end() && link->second.get() == &linked && links.contains(linking.name);
}

SurveyedEnds::SurveyedEnds(SurveyState& state, VersionExploration& exploration)
    : state_(state), exploration_(exploration), irrelevant_(state.question, &state.memory) {}

void SurveyedEnds::enter() {
  enterTargets();
  noteKnownAnswers();
  enterSources();
  if (!state_.isUnfit && (mayNeedToBringIn() || mayLinkAnew())) takeAllUp();
}

void SurveyedEnds::enterTargets() {
  for (std::size_t i = 0; i < state_.question.targets.size(); ++i) {
    const auto& metamodels = state_.question.targets[i].metamodels;
    state_.targets[i].entries.reserve(metamodels.size());
    for (const auto& [name, linked] : metamodels) {
      if (linked == nullptr) {
        state_.targets[i].absent.push_back(&state_.nameOf(name));
      } else if (linked->name != name || !irrelevant_.contain(*linked)) {
        enterTarget(i, name, *linked);
      }
    }
  }
}

void SurveyedEnds::enterTarget(std::size_t target, const std::u16string& key,
                               const LinkedMetamodel& linked) {
  state_.targets[target].isPossible &= linked.name == key;  // baselines hold no others
  SurveyedName& name = state_.nameOf(key);
  name.targets.push_back(&linked);
  state_.targets[target].entries.push_back({&name, &linked});
  if (!holdsLinksOf(state_.question.targets[target], linked)) closeTarget(target, linked);
}

void SurveyedEnds::closeTarget(std::size_t target, const LinkedMetamodel& linked) {
  SurveyedTarget& surveyed = state_.targets[target];
  for (const auto& [key, link] : linked.linkedMetamodels) {
    if (key == linked.name) continue;
    const LinkedMetamodel* held = state_.heldByClosed(target, key);
    if (held != nullptr && bringsInAgainstItself(*held, linked)) continue;
    const auto added = surveyed.added.find(key);
    if (held == link.get() && added != surveyed.added.end())
      added->second.linking.push_back(&linked);
    if (held == link.get()) continue;
    const bool isMentioned =
        held != nullptr || state_.question.targets[target].metamodels.contains(key);
    surveyed.isPossible &= !isMentioned;
    if (isMentioned) continue;
    surveyed.entries.push_back({&state_.nameOf(key), link.get()});
    surveyed.added.emplace(key, SurveyedTarget::Addition{link.get(), {&linked}});
  }
}

void SurveyedEnds::noteKnownAnswers() {
  for (const KnownMetamodel& known : state_.question.known) {
    if (irrelevant_.contain(*known.linked->front())) continue;
    if (known.metamodel.name != *known.name) continue;  // found out if a hop leads there
    SurveyedName& name = state_.nameOf(*known.name);
    SurveyedVersion& version = exploration_.versionOf(name, known.metamodel);
    version.linked = known.linked;
    version.isLinkTried = true;
    exploration_.noteAnswer(name, *known.version, &version);
  }
}

void SurveyedEnds::enterSources() {
  for (std::size_t i = 0; i < state_.question.sources.size(); ++i) {
    const auto& metamodels = state_.question.sources[i].metamodels;
    state_.sources[i].entries.reserve(metamodels.size());
    for (const auto& [name, linked] : metamodels) {
      state_.isUnfit |= linked == nullptr || linked->name != name;
      if (state_.isUnfit) return;
      if (!irrelevant_.contain(*linked)) enterSource(i, name, *linked);
    }
    state_.sources[i].isRegular &=
        meets(Requirements::All, state_.question.host, state_.question.sources[i]);
  }
}

void SurveyedEnds::enterSource(std::size_t source, const std::u16string& key,
                               const LinkedMetamodel& linked) {
  SurveyedName& name = state_.nameOf(key);
  ++name.sources;
  SurveyedSource& surveyed = state_.sources[source];
  surveyed.entries.push_back({&name, &linked});
  SurveyedVersion& version = exploration_.versionOf(name, static_cast<const Metamodel&>(linked));
  exploration_.reach(version, 0);
  if (!std::exchange(version.isLinkTried, true)) {
    // Every step from here tries to hold it, but for those that move it.
    version.linked = &state_.question.host.getLinkedMetamodels(linked);
  }
  surveyed.isRegular &=
      version.isLinkedAs(linked) && holdsLinksOf(state_.question.sources[source], linked);
}

/// Whether some target mentions a name that some source does not hold.
bool SurveyedEnds::mayNeedToBringIn() const {
  return std::any_of(
      state_.targets.begin(), state_.targets.end(), [this](const SurveyedTarget& target) {
        return std::any_of(
            target.entries.begin(), target.entries.end(),
            [this](const SurveyedEntry& entry) { return !state_.isHeldFromStart(*entry.name); });
      });
}

/// Whether some first step links everything anew, whatever it moves.
bool SurveyedEnds::mayLinkAnew() const {
  return std::any_of(state_.sources.begin(), state_.sources.end(),
                     [](const SurveyedSource& source) { return !source.isRegular; });
}

void SurveyedEnds::takeUp(const std::u16string& name, const LinkedMetamodel& linked) {
  irrelevant_.remove(linked);
  for (std::size_t i = 0; i < state_.question.targets.size(); ++i) {
    if (state_.question.targets[i].metamodels.contains(name)) enterTarget(i, name, linked);
  }
  for (std::size_t i = 0; i < state_.question.sources.size(); ++i) enterSource(i, name, linked);
}

void SurveyedEnds::takeAllUp() {
  if (irrelevant_.empty()) return;
  for (const auto& [name, linked] : state_.question.sources.front().metamodels) {
    if (irrelevant_.contain(*linked)) takeUp(name, *linked);
  }
}

void SurveyedEnds::takeUpLinked(const std::u16string& name) {
  if (const auto* irrelevant = irrelevant_.find(name)) {
    takeUp(irrelevant->first, *irrelevant->second);
  }
}

}  // namespace tarn::evolution::pathfinder
