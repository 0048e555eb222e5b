#include "catalogue/hop_notes.hpp"

#include "catalogue/model/row_key.hpp"

namespace tarn::evolution::catalogue {

void HopNotes::add(const pathfinder::Hop& hop, const std::u16string& note) {
  if (!note.empty()) notes_.try_emplace(keyOf(hop), note);
}

const std::u16string& HopNotes::of(const pathfinder::Hop& hop) const {
  static const std::u16string none;
  if (notes_.empty()) return none;
  const auto found = notes_.find(keyOf(hop));
  return found == notes_.end() ? none : found->second;
}

}  // namespace tarn::evolution::catalogue
