#include "catalogue/text/dependency_json.hpp"

#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

namespace {

void writeRange(JsonPrinter& printer, const pathfinder::VersionRange& range) {
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
