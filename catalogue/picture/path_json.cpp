#include "catalogue/picture/path_json.hpp"

#include <ostream>

#include "catalogue/picture/step_json.hpp"

namespace tarn::evolution::catalogue {

void writePathJson(const PathPicture& picture, std::ostream& out) {
  writeDocument(out, JsonPrinter::Layout::Indented, [&](JsonPrinter& printer) {
    printer.field("found", true);
    printer.field("weight", std::uint64_t{picture.weight});
    printer.key("steps");
    writeSteps(printer, picture);
  });
}

}  // namespace tarn::evolution::catalogue
