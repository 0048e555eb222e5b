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

template <class Needed>
void writeFields(JsonPrinter& printer, const Needed& needed) {
  printer.field("name", fl::i18n::ustring_to_utf8(needed.name));
  printer.key("range");
  writeRange(printer, needed.range);
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

void writeDependencies(JsonPrinter& printer, const CatalogueMetamodel& metamodel,
                       Unlinked unlinked) {
  printer.array([&] {
    const auto& dependencies = metamodel.descriptor.dependencies;
    for (std::size_t i = 0; i < dependencies.size(); ++i) {
      printer.object([&] {
        writeFields(printer, dependencies[i]);
        writeNote(printer, metamodel.noteOfDependency(i));
      });
    }
    for (const auto& [needed, note] : metamodel.requirements) {
      printer.object([&, &own = needed, &told = note] {
        writeFields(printer, own);
        if (own.isOptional) printer.field("optional", true);
        if (!own.isOptional && unlinked == Unlinked::Told) printer.field("linked", false);
        writeNote(printer, told);
      });
    }
  });
}

void writeNote(JsonPrinter& printer, const std::u16string& note) {
  if (!note.empty()) printer.field("note", fl::i18n::ustring_to_utf8(note));
}

}  // namespace tarn::evolution::catalogue
