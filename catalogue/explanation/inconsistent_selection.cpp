#include "catalogue/explanation/inconsistent_selection.hpp"

#include <algorithm>
#include <map>

#include "catalogue/explanation/clash_search.hpp"
#include "catalogue/explanation/hop_graph.hpp"
#include "catalogue/explanation/linking_obstacle.hpp"
#include "catalogue/explanation/requirement_clash.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Metamodel;

namespace {

constexpr std::size_t mostRemedies = 3;
constexpr std::size_t mostTried = 100;

/// The positions of a list other than one of them, the nearest first.
std::vector<std::size_t> aroundPosition(std::size_t position, std::size_t size) {
  std::vector<std::size_t> result;
  for (std::size_t distance = 1; distance < size; ++distance) {
    if (distance <= position) result.push_back(position - distance);
    if (position + distance < size) result.push_back(position + distance);
  }
  return result;
}

/// Whether some candidate brings another version of its own name, which may stand back for it: then
/// only combining tells what can stand together.
bool anyLinksOwnName(const std::vector<Candidates>& candidates) {
  return std::any_of(candidates.begin(), candidates.end(), [](const Candidates& choice) {
    return std::any_of(choice.linked.begin(), choice.linked.end(), [&](const auto& linked) {
      return linked->linkedMetamodels.contains(choice.name);
    });
  });
}

/// Whether a selection stands for a baseline; no value when that takes too much.
std::optional<bool> isConsistent(Inquiry& inquiry, const SelectedMetamodels& selection) {
  Selection versions;
  for (const auto& [name, metamodel] : selection) versions.emplace(name, metamodel.version);
  const auto baselines = inquiry.repository().tryCombine(versions);
  if (!baselines) return std::nullopt;
  return !baselines->empty();
}

/// The nearest versions of one party with which the others can stand as they are.
NamedVersions findRemedies(Inquiry& inquiry, std::vector<Candidates> candidates,
                           SelectedMetamodels selection, const std::u16string& party) {
  Metamodel& selected = selection.at(party);
  const HopGraph graph(inquiry, party, Direction::Unknown);
  const auto replaced =
      std::find_if(candidates.begin(), candidates.end(),
                   [&](const Candidates& candidate) { return candidate.name == party; });
  std::vector<std::size_t> fitting;
  std::size_t tried = 0;
  for (const std::size_t position :
       aroundPosition(graph.find(selected.version).value_or(0), graph.versions().size())) {
    if (fitting.size() == mostRemedies || tried++ == mostTried) break;
    selected = graph.versions()[position];
    if (!inquiry.repository().isLinkable(selected).value_or(false)) continue;
    replaced->linked = *inquiry.repository().tryLink(selected);
    const bool mayFit = anyLinksOwnName(candidates) || canStandTogether(candidates);
    if (mayFit && isConsistent(inquiry, selection).value_or(true)) fitting.push_back(position);
  }
  std::sort(fitting.begin(), fitting.end());
  NamedVersions result{party, {}};
  for (const std::size_t position : fitting) {
    result.versions.push_back(graph.versions()[position].version);
  }
  return result;
}

/// What versions that linking lets stand together need of one another, or of themselves.
std::optional<Clash> findClashOfNeeds(Inquiry& inquiry, const SelectedMetamodels& selection,
                                      const std::vector<Candidates>& candidates) {
  Given given;
  for (const auto& [name, metamodel] : selection) given[name] = {metamodel};
  if (auto clash = RequirementClashes(inquiry.repository(), RequirementClashes::OfDependencies)
                       .find(given)) {
    return clash;
  }
  std::map<std::u16string, const Metamodel*> held;
  const auto linked = combineCandidates(candidates, 1).baselines;
  if (linked.empty()) return std::nullopt;
  for (const auto& [name, metamodel] : linked.front().metamodels) {
    held.emplace(name, metamodel.get());
  }
  return findExcluded(inquiry.repository(), held);
}

}  // namespace

std::optional<InconsistentSelection> findInconsistency(Inquiry& inquiry, QuestionSide side,
                                                       const SelectedMetamodels& selection) {
  InconsistentSelection result{side, {}, std::nullopt, {}};
  std::vector<Candidates> candidates;
  for (const auto& [name, metamodel] : selection) {
    if (const LinkedMetamodels* linked = inquiry.repository().tryLink(metamodel)) {
      candidates.push_back({name, *linked});
    } else {
      result.unlinkable.push_back(explainUnlinkable(inquiry, metamodel));
    }
  }
  result.clash = findClash(inquiry.repository(), candidates);
  if (result.unlinkable.empty() && !selection.empty() &&
      (!result.clash || anyLinksOwnName(candidates))) {
    const std::unordered_map<std::u16string, Metamodel> all(selection.begin(), selection.end());
    if (!inquiry.repository().combine(all).empty()) return std::nullopt;
  }
  if (!result.unlinkable.empty()) return result;
  if (!result.clash && !selection.empty()) {
    result.clash = findClashOfNeeds(inquiry, selection, candidates);
  }
  if (!result.clash) return result;
  for (const std::u16string& party : result.clash->parties) {
    if (!selection.contains(party)) continue;  // a link brings it in
    result.remedies.push_back(findRemedies(inquiry, candidates, selection, party));
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
