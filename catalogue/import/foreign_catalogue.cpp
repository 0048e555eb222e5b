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

void ForeignPackage::addHop(std::size_t from, std::size_t to, bool isExpensive,
                            const std::string& note) {
  if (from == to) return;
  const auto [place, isNew] = byEnds_.try_emplace({from, to}, hops_.size());
  if (isNew) {
    hops_.push_back({from, to, isExpensive, note});
    return;
  }
  ForeignHop& hop = hops_[place->second];
  if (hop.isExpensive == isExpensive) {
    addNote(note, hop.note);
  } else if (hop.isExpensive) {
    hop.isExpensive = false;
    hop.note = note;
  }
}

void addNote(const std::string& more, std::string& note) {
  const std::string inLines = "\n" + note + "\n";
  if (more.empty() || inLines.find("\n" + more + "\n") != std::string::npos) return;
  note.append(note.empty() ? "" : "\n").append(more);
}

}  // namespace tarn::evolution::catalogue
