#include "catalogue/picture/baseline_output.hpp"

#include <map>

#include "catalogue/text/visible.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionBaseline;

std::string headingOfBaseline(std::size_t place, std::size_t count, Colouring colouring) {
  return emphasise("Baseline " + std::to_string(place + 1) + " of " + std::to_string(count),
                   colouring);
}

std::string listMembers(const VersionBaseline::Entries& members) {
  std::string list;
  for (const auto& [name, linked] : std::map(members.begin(), members.end())) {
    if (!linked) continue;
    if (!list.empty()) list += ", ";
    list += toVisible(fl::i18n::ustring_to_utf8(name) + " " + textOf(linked->version));
  }
  return list;
}

void writeMembers(JsonPrinter& printer, const VersionBaseline::Entries& members) {
  printer.object([&] {
    for (const auto& [name, linked] : std::map(members.begin(), members.end())) {
      if (linked) printer.field(fl::i18n::ustring_to_utf8(name), textOf(linked->version));
    }
  });
}

}  // namespace tarn::evolution::catalogue
