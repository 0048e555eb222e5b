#include "catalogue/text/dependency_json.hpp"

#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

namespace {

template <class WritePiece>
void writeUnion(JsonPrinter& printer, const pathfinder::VersionRange& range,
                const WritePiece& writePiece) {
  printer.object([&] {
    printer.arrayField("anyOf", [&] {
      for (const auto& piece : piecesOf(range)) writePiece(printer, piece);
    });
  });
}

void writeRange(JsonPrinter& printer, const pathfinder::VersionRange& range) {
  if (isUnion(range)) return writeUnion(printer, range, writeRange);
  if (const auto single = findSingleVersion(range)) return printer.value(textOf(*single));
  writeBounds(printer, range);
}

void writeFields(JsonPrinter& printer, const pathfinder::Dependency& dependency) {
  printer.field("name", fl::i18n::ustring_to_utf8(dependency.name));
  printer.key("range");
  writeRange(printer, dependency.range);
}

}  // namespace

void writeBounds(JsonPrinter& printer, const pathfinder::VersionRange& range) {
  if (isUnion(range)) return writeUnion(printer, range, writeBounds);
  if (!range.isSemVerRange() && !boundsOf(range)) return printer.value(textOf(range));
  printer.array([&] {
    const auto bounds = boundsOf(range);
    printer.value(textOf(bounds ? bounds->lower : range.getSemVerRange().lower));
    printer.value(textOf(bounds ? bounds->upper : range.getSemVerRange().upper));
  });
}

void writeDependency(JsonPrinter& printer, const pathfinder::Dependency& dependency) {
  printer.object([&] { writeFields(printer, dependency); });
}

void writeDependencies(JsonPrinter& printer,
                       const std::vector<pathfinder::Dependency>& dependencies,
                       const std::vector<std::u16string>& notes) {
  printer.array([&] {
    for (std::size_t i = 0; i < dependencies.size(); ++i) {
      printer.object([&] {
        writeFields(printer, dependencies[i]);
        if (i < notes.size()) writeNote(printer, notes[i]);
      });
    }
  });
}

void writeNote(JsonPrinter& printer, const std::u16string& note) {
  if (!note.empty()) printer.field("note", fl::i18n::ustring_to_utf8(note));
}

}  // namespace tarn::evolution::catalogue
