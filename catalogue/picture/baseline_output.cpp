#include "catalogue/picture/baseline_output.hpp"

#include <map>

#include "catalogue/text/display_text.hpp"
#include "catalogue/text/printed_text.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::map<std::u16string, std::string> inOrder(const LinkedByName& members) {
  std::map<std::u16string, std::string> ordered;
  for (const auto& [name, linked] : members) ordered.emplace(name, textOf(linked->version));
  return ordered;
}

}  // namespace

std::string headingOfBaseline(std::size_t place, std::size_t count, Colouring colouring) {
  return emphasise("Baseline " + std::to_string(place + 1) + " of " + std::to_string(count),
                   colouring);
}

std::string listMembers(const LinkedByName& members) {
  std::string list;
  for (const auto& [name, version] : inOrder(members)) {
    if (!list.empty()) list += ", ";
    list += toVisible(fl::i18n::ustring_to_utf8(name) + " " + version);
  }
  return list;
}

void writeMembers(JsonPrinter& printer, const LinkedByName& members) {
  printer.object([&] {
    for (const auto& [name, version] : inOrder(members)) {
      printer.field(fl::i18n::ustring_to_utf8(name), version);
    }
  });
}

}  // namespace tarn::evolution::catalogue
