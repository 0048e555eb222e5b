#include "catalogue/import/foreign_catalogue.hpp"

namespace tarn::evolution::catalogue {

ForeignVersion& ForeignPackage::addVersion(const std::string& text, const SourcePlace& place) {
  if (!byText_.try_emplace(text, versions_.size()).second) {
    place.fail("the version " + text + " stands twice");
  }
  return versions_.emplace_back(ForeignVersion{text, place, parseFullVersion(text)});
}

std::optional<std::size_t> ForeignPackage::find(const std::string& text) const {
  const auto found = byText_.find(text);
  return found == byText_.end() ? std::nullopt : std::optional(found->second);
}

void ForeignPackage::addHop(std::size_t from, std::size_t to, bool isExpensive) {
  if (from == to) return;
  const auto [place, isNew] = byEnds_.try_emplace({from, to}, hops_.size());
  if (isNew) {
    hops_.push_back({from, to, isExpensive});
  } else if (!isExpensive) {
    hops_[place->second].isExpensive = false;
  }
}

}  // namespace tarn::evolution::catalogue
