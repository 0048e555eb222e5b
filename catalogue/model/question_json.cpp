#include "catalogue/model/question_json.hpp"

#include <map>

#include "catalogue/text/printed_text.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

void writeSides(JsonPrinter& printer, const Question& question) {
  const auto write = [&](const char* side, const Selection& selection) {
    printer.objectField(side, [&] {
      for (const auto& [name, version] : std::map(selection.begin(), selection.end())) {
        printer.field(fl::i18n::ustring_to_utf8(name), textOf(version));
      }
    });
  };
  write("from", question.from);
  write("to", question.to);
}

}  // namespace tarn::evolution::catalogue
