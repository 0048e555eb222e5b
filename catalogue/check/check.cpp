#include "catalogue/check/check.hpp"

#include <algorithm>
#include <sstream>
#include <tuple>

#include "catalogue/check/draft_checks.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;
using pathfinder::VersionRange;

std::vector<Finding> check(const CatalogueDraft& draft, const CheckLimits& limits) {
  std::vector<Finding> findings = draft.findings;
  if (!draft.isReadable) return findings;
  const DraftIndex index(draft);
  checkVersions(index, findings);
  checkDependencies(index, findings);
  const DependencyRangeGraph graph(index);
  const DependencyComponents components(graph);
  checkCycles(index, components, findings);
  LinkAnalysis links(index, components, graph, limits.linkWork);
  checkLinks(index, links, findings);
  checkHops(index, findings);
  checkHopGraph(index, findings);
  checkQuestion(index, links, findings);
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& left, const Finding& right) {
    return std::tie(left.place.order, left.place.text, left.code) <
           std::tie(right.place.order, right.place.text, right.code);
  });
  return findings;
}

std::string quoted(std::u16string_view name) {
  return "\"" + fl::i18n::ustring_to_utf8(std::u16string(name)) + "\"";
}

std::string printed(const VersionId& version) {
  std::ostringstream out;
  out << version;
  return out.str();
}

std::string printed(const VersionRange& range) {
  if (range.isSemVerRange()) {
    const VersionId lower = range.getSemVerRange().lower;
    if (range == VersionRange::singleVersion(lower)) return printed(lower);
  }
  std::ostringstream out;
  out << range;
  return out.str();
}

std::string listed(const std::vector<std::string>& texts) {
  constexpr std::size_t few = 6;
  const std::size_t shown = texts.size() > few + 1 ? few : texts.size();
  std::string result;
  for (std::size_t i = 0; i < shown; ++i) {
    const bool isLast = i + 1 == texts.size();
    result += (i == 0 ? "" : isLast ? " and " : ", ") + texts[i];
  }
  if (shown < texts.size()) result += " and " + std::to_string(texts.size() - shown) + " more";
  return result;
}

std::vector<Slot> inFileOrder(const DraftIndex& index, std::vector<Slot> slots) {
  std::sort(slots.begin(), slots.end(),
            [&](Slot left, Slot right) { return index.rowNumber(left) < index.rowNumber(right); });
  return slots;
}

Finding findingAt(const DraftIndex& index, FindingCode code, const std::vector<Slot>& slots,
                  const std::string& message) {
  Finding finding{code, index.draft().placeOf(index.row(slots.front())), message, {}};
  for (auto slot = slots.begin() + 1; slot != slots.end(); ++slot) {
    finding.related.push_back(index.draft().placeOf(index.row(*slot)));
  }
  return finding;
}

std::vector<std::string> versionsOf(const DraftIndex& index, const std::vector<Slot>& slots) {
  std::vector<std::string> versions;
  versions.reserve(slots.size());
  for (const Slot slot : slots) versions.push_back(printed(*index.row(slot).version));
  return versions;
}

}  // namespace tarn::evolution::catalogue
