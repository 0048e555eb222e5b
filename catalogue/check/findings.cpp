#include "catalogue/check/findings.hpp"

#include <algorithm>
#include <iterator>
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
