#include <algorithm>
#include <map>

#include "catalogue/check/checks.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::string described(const DraftIndex& index, const LinkRequirement& requirement,
                      const std::vector<Slot>& chain) {
  if (chain.empty()) return index.describe(requirement.candidates.begin) + " is asked for";
  const DependencyRow& dependency = index.row(chain.back()).dependencies[requirement.row];
  return chained(described(index, chain)) + " needs " + quotedName(*dependency.name) + " " +
         rangeText(*dependency.range) + (dependency.isOptional ? " if it is there" : "");
}

/// Versions by the version that keeps them from linking.
using Blocked = std::map<Slot, std::vector<Slot>>;

void findBlocked(const DraftIndex& index, const Blocked& blocked, Findings& findings) {
  for (const auto& [blocker, versions] : blocked) {
    const std::vector<Slot> ordered = inFileOrder(index, versions);
    std::vector<Slot> places{blocker};
    places.insert(places.end(), ordered.begin(), ordered.end());
    findings.add(FindingCode::BlockedVersion, places,
                 index.describe(blocker) +
                     " cannot be linked, and so nothing can that depends on a range which admits "
                     "it: " +
                     listed(described(index, ordered)));
  }
}

void findUndecided(const DraftIndex& index, const std::vector<Slot>& undecided,
                   const std::string& what, Findings& findings) {
  if (undecided.empty()) return;
  const std::vector<Slot> ordered = inFileOrder(index, undecided);
  findings.add(FindingCode::UndecidedLinks, ordered,
               "deciding whether " + what +
                   " takes too many combinations: " + listed(described(index, ordered)));
}

}  // namespace

std::string explained(const DraftIndex& index, const LinkAnalysis::Reason& reason) {
  std::vector<std::string> names;
  for (const NameNumber name : reason.choices) {
    const std::string text = quotedName(index.names()[name].text);
    if (std::find(names.begin(), names.end(), text) == names.end()) names.push_back(text);
  }
  std::string result;
  if (!names.empty()) result = "whichever versions of " + listed(names) + " are chosen";
  if (!reason.clash) return names.empty() ? "nothing meets all requirements" : result;
  if (!names.empty()) result += ", for instance ";
  return result + described(index, reason.clash->first, reason.clash->firstChain) + ", but " +
         described(index, reason.clash->second, reason.clash->secondChain);
}

void checkCycles(const DraftIndex& index, const DependencyComponents& components,
                 Findings& findings) {
  for (const std::vector<Slot>& members : components.cyclic()) {
    const Slot first = inFileOrder(index, members).front();
    const std::vector<Slot> cycle = components.cycleThrough(first);
    const std::size_t others = members.size() - cycle.size();
    std::string message = dependencyCycle(described(index, cycle));
    if (others > 0)
      message += ", and others with " + std::to_string(others) +
                 (others == 1 ? " more version" : " more versions");
    Place place = index.placeOf(first);
    place.text = index.draft().placeOf(index.row(first), "dependencies").text;
    std::vector<Place> related;
    for (auto slot = cycle.begin() + 1; slot != cycle.end(); ++slot) {
      related.push_back(index.placeOf(*slot));
    }
    findings.add(FindingCode::DependencyCycle, place, message, related);
  }
}

void checkLinks(const DraftIndex& index, LinkAnalysis& links, Findings& findings) {
  using State = LinkAnalysis::State;
  Blocked blocked;
  std::vector<Slot> undecided;
  for (Slot slot = 0; slot < index.slots().size(); ++slot) {
    const State state = links.state(slot);
    if (state == State::Blocked) blocked[links.blocker(slot)].push_back(slot);
    if (state == State::Undecided) undecided.push_back(slot);
    if (state != State::Clashing && state != State::SelfExcluding) continue;
    findings.add(
        FindingCode::UnlinkableVersion, std::vector{slot},
        index.describe(slot) +
            (state == State::Clashing ? " cannot be linked: " : " can stand in no baseline: ") +
            explained(index, links.explain(slot)));
  }
  findBlocked(index, blocked, findings);
  findUndecided(index, undecided, "these can be linked", findings);
}

void checkRequirements(const DraftIndex& index, const LinkAnalysis& links, std::uint64_t budget,
                       Findings& findings) {
  using State = LinkAnalysis::State;
  LinkSolver solver(index);
  for (Slot slot = 0; slot < index.slots().size(); ++slot) {
    const State state = links.state(slot);
    solver.setExcluded(slot, state != State::Linkable && state != State::Undecided);
  }
  std::vector<bool> isMet(index.slots().size());
  std::vector<Slot> undecided;
  for (Slot slot = 0; slot < index.slots().size(); ++slot) {
    if (isMet[slot] || links.state(slot) != State::Linkable) continue;
    std::uint64_t share = std::min(budget, LinkAnalysis::budgetOfOne);
    budget -= share;
    const LinkSolver::Outcome outcome = solver.solve({slot}, share);
    budget += share;
    if (outcome == LinkSolver::Outcome::Consistent) {
      for (const Slot found : solver.found()) isMet[found] = true;
    } else if (outcome == LinkSolver::Outcome::Undecided) {
      undecided.push_back(slot);
    } else {
      findings.add(FindingCode::UnmetVersion, std::vector{slot},
                   index.describe(slot) + " can stand in no baseline that a step leads to: " +
                       explained(index, {solver.clash(), solver.choices()}));
    }
  }
  findUndecided(index, undecided, "what these require can be met", findings);
}

}  // namespace tarn::evolution::catalogue
