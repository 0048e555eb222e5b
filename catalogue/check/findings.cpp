#include "catalogue/check/finding_text.hpp"

#include <algorithm>

namespace tarn::evolution::catalogue {

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
  for (const Slot slot : slots) versions.push_back(textOf(*index.row(slot).version));
  return versions;
}

}  // namespace tarn::evolution::catalogue
