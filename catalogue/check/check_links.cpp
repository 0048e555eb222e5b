#include <algorithm>
#include <map>

#include "catalogue/check/draft_checks.hpp"
#include "catalogue/check/finding_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::vector<std::string> described(const DraftIndex& index, const std::vector<Slot>& slots) {
  std::vector<std::string> result;
  result.reserve(slots.size());
  for (const Slot slot : slots) result.push_back(index.describe(slot));
  return result;
}

/// "A@1.0.0 -> B@2.0.0"; of a long chain, its ends.
std::string chained(const DraftIndex& index, const std::vector<Slot>& chain) {
  constexpr std::size_t atEachEnd = 6;
  std::string result;
  for (std::size_t i = 0; i < chain.size(); ++i) {
    if (i == atEachEnd && chain.size() > 2 * atEachEnd + 1) {
      const std::size_t left = chain.size() - 2 * atEachEnd;
      result += " -> (" + std::to_string(left) + " more)";
      i += left;
    }
    result += (i == 0 ? "" : " -> ") + index.describe(chain[i]);
  }
  return result;
}

std::string described(const DraftIndex& index, const LinkRequirement& requirement,
                      const std::vector<Slot>& chain) {
  if (chain.empty()) return index.describe(requirement.candidates.begin) + " is asked for";
  const DependencyRow& dependency = index.row(chain.back()).dependencies[requirement.row];
  return chained(index, chain) + " needs " + quotedName(*dependency.name) + " " +
         rangeText(*dependency.range);
}

/// Versions by the version that keeps them from linking.
using Blocked = std::map<Slot, std::vector<Slot>>;

void findBlocked(const DraftIndex& index, const Blocked& blocked, std::vector<Finding>& findings) {
  for (const auto& [blocker, versions] : blocked) {
    const std::vector<Slot> ordered = inFileOrder(index, versions);
    std::vector<Slot> places{blocker};
    places.insert(places.end(), ordered.begin(), ordered.end());
    findings.push_back(findingAt(
        index, FindingCode::BlockedVersion, places,
        index.describe(blocker) +
            " cannot be linked, and so nothing can that depends on a range which admits it: " +
            listed(described(index, ordered))));
  }
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
                 std::vector<Finding>& findings) {
  for (const std::vector<Slot>& members : components.cyclic()) {
    const Slot first = inFileOrder(index, members).front();
    std::vector<Slot> cycle = components.cycleThrough(first);
    Finding finding = findingAt(index, FindingCode::DependencyCycle, cycle, "");
    finding.place.text = index.draft().placeOf(index.row(first), "dependencies").text;
    const std::size_t others = members.size() - cycle.size();
    cycle.push_back(first);
    finding.message = "the dependencies form a cycle: " + chained(index, cycle);
    if (others > 0)
      finding.message += ", and others with " + std::to_string(others) + " more versions";
    findings.push_back(std::move(finding));
  }
}

void checkLinks(const DraftIndex& index, LinkAnalysis& links, std::vector<Finding>& findings) {
  using State = LinkAnalysis::State;
  Blocked blocked;
  std::vector<Slot> undecided;
  for (Slot slot = 0; slot < index.slotCount(); ++slot) {
    const State state = links.state(slot);
    if (state == State::Blocked) blocked[links.blocker(slot)].push_back(slot);
    if (state == State::Undecided) undecided.push_back(slot);
    if (state != State::Clashing && state != State::SelfExcluding) continue;
    findings.push_back(findingAt(
        index, FindingCode::UnlinkableVersion, {slot},
        index.describe(slot) +
            (state == State::Clashing ? " cannot be linked: " : " can stand in no baseline: ") +
            explained(index, links.explain(slot))));
  }
  findBlocked(index, blocked, findings);
  if (undecided.empty()) return;
  undecided = inFileOrder(index, undecided);
  findings.push_back(
      findingAt(index, FindingCode::UndecidedLinks, undecided,
                "deciding whether these can be linked takes too many combinations: " +
                    listed(described(index, undecided))));
}

}  // namespace tarn::evolution::catalogue
