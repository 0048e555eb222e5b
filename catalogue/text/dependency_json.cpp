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
  printer.object([&] { writeDependencyFields(printer, dependency.name, dependency.range); });
}

void writeDependencyFields(JsonPrinter& printer, const std::u16string& name,
                           const pathfinder::VersionRange& range) {
  printer.field("name", fl::i18n::ustring_to_utf8(name));
  printer.key("range");
  writeRange(printer, range);
}

void writeNote(JsonPrinter& printer, const std::u16string& note) {
  if (!note.empty()) printer.field("note", fl::i18n::ustring_to_utf8(note));
}

}  // namespace tarn::evolution::catalogue
