#include "catalogue/check/findings.hpp"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

template <class Describe>
std::vector<std::string> textsOf(const std::vector<Slot>& slots, const Describe& describe) {
  std::vector<std::string> texts;
  std::transform(slots.begin(), slots.end(), std::back_inserter(texts), describe);
  return texts;
}

/// Whose each place is.
class PlaceOwners {
 public:
  explicit PlaceOwners(const CatalogueDraft& draft) {
    for (const MetamodelRow& row : draft.metamodels) add(row.order, row.name);
    for (const HopRow& row : draft.hops) add(row.order, row.name);
    for (const auto* side : {&draft.questionFrom, &draft.questionTo}) {
      if (!*side) continue;
      for (const SelectionRow& row : (*side)->rows) selected_.emplace(row.place.order, &row.name);
    }
  }

  void nameOwners(Finding& finding) const {
    std::set<std::u16string> names;
    addOwner(finding.place, names);
    for (const Place& place : finding.related) addOwner(place, names);
    finding.names.assign(names.begin(), names.end());
  }

 private:
  using Names = std::map<std::uint64_t, const std::u16string*>;

  void add(std::uint64_t order, const std::optional<std::u16string>& name) {
    rows_.emplace(order, name ? &*name : nullptr);
  }

  static bool isWithinRow(const Place& place) {
    constexpr const char* beginnings[] = {"/metamodels/", "/hops/", "table metamodels, ",
                                          "table hops, ", "table dependencies, "};
    return std::any_of(std::begin(beginnings), std::end(beginnings),
                       [&](const char* beginning) { return place.text.starts_with(beginning); });
  }

  void addOwner(const Place& place, std::set<std::u16string>& names) const {
    if (!isWithinRow(place)) {
      const auto selected = selected_.find(place.order);
      if (selected != selected_.end()) names.insert(*selected->second);
      return;
    }
    const auto next = rows_.upper_bound(place.order);
    if (next == rows_.begin()) return;
    if (const std::u16string* name = std::prev(next)->second) names.insert(*name);
  }

  Names rows_;  // by where they begin
  Names selected_;
};

}  // namespace

void Findings::add(FindingCode code, const std::vector<Slot>& slots, const std::string& message) {
  std::vector<Place> related;
  for (auto slot = slots.begin() + 1; slot != slots.end(); ++slot) {
    related.push_back(index_.placeOf(*slot));
  }
  add(code, index_.placeOf(slots.front()), message, related);
}

std::vector<Finding> Findings::inOrder() {
  std::stable_sort(all_.begin(), all_.end(), [](const Finding& left, const Finding& right) {
    return std::tie(left.place.order, left.place.text, left.code) <
           std::tie(right.place.order, right.place.text, right.code);
  });
  const PlaceOwners owners(index_.draft());
  for (Finding& finding : all_) owners.nameOwners(finding);
  return std::move(all_);
}

std::vector<Slot> inFileOrder(const DraftIndex& index, std::vector<Slot> slots) {
  std::sort(slots.begin(), slots.end(), [&](Slot left, Slot right) {
    return index.slots().at(left).row < index.slots().at(right).row;
  });
  return slots;
}

std::vector<std::string> described(const DraftIndex& index, const std::vector<Slot>& slots) {
  return textsOf(slots, [&](Slot slot) { return index.describe(slot); });
}

std::vector<std::string> versionsOf(const DraftIndex& index, const std::vector<Slot>& slots) {
  return textsOf(slots, [&](Slot slot) { return textOf(index.version(slot)); });
}

}  // namespace tarn::evolution::catalogue
