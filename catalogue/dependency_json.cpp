#include "catalogue/dependency_json.hpp"

#include "catalogue/printed_text.hpp"
#include "catalogue/range_text.hpp"
#include "catalogue/range_union.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

namespace {

void writeRange(JsonPrinter& printer, const pathfinder::VersionRange& range) {
  if (isUnion(range)) {
    printer.object([&] {
      printer.arrayField("anyOf", [&] {
        for (const auto& piece : piecesOf(range)) writeRange(printer, piece);
      });
    });
    return;
  }
  if (const auto single = findSingleVersion(range)) return printer.value(textOf(*single));
  printer.array([&] {
    const auto& [lower, upper] = range.getSemVerRange();
    printer.value(textOf(lower));
    printer.value(textOf(upper));
  });
}

}  // namespace

void writeDependencies(JsonPrinter& printer,
                       const std::vector<pathfinder::Dependency>& dependencies) {
  printer.array([&] {
    for (const auto& [name, range] : dependencies) {
      printer.object([&, &name = name, &range = range] {
        printer.field("name", fl::i18n::ustring_to_utf8(name));
        printer.key("range");
        writeRange(printer, range);
      });
    }
  });
}

}  // namespace tarn::evolution::catalogue
