#include "catalogue/text/dependency_json.hpp"

#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

void writeBounds(JsonPrinter& printer, const pathfinder::VersionRange& range) {
  if (!range.isSemVerRange()) return printer.value(textOf(range));
  printer.array([&] {
    const auto& [lower, upper] = range.getSemVerRange();
    printer.value(textOf(lower));
    printer.value(textOf(upper));
  });
}

void writeDependencies(JsonPrinter& printer,
                       const std::vector<pathfinder::Dependency>& dependencies) {
  printer.array([&] {
    for (const auto& [name, range] : dependencies) {
      printer.object([&, &name = name, &range = range] {
        printer.field("name", fl::i18n::ustring_to_utf8(name));
        printer.key("range");
        if (const auto single = findSingleVersion(range)) {
          printer.value(textOf(*single));
        } else {
          writeBounds(printer, range);
        }
      });
    }
  });
}

}  // namespace tarn::evolution::catalogue
