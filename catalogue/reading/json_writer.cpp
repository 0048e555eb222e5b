#include "catalogue/reading/json_writer.hpp"

#include <ostream>
#include <string>

#include "catalogue/model/needs_json.hpp"
#include "catalogue/model/question_json.hpp"
#include "catalogue/text/dependency_json.hpp"
#include "catalogue/text/json_printer.hpp"
#include "catalogue/text/printed_text.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

namespace {

using fl::i18n::ustring_to_utf8;
using Layout = JsonPrinter::Layout;

}  // namespace

JsonCatalogueWriter::JsonCatalogueWriter(std::ostream& out) : out_(out) {
  out_ << "{\"metamodels\":[";
}

void JsonCatalogueWriter::addMetamodel(const CatalogueMetamodel& metamodel) {
  beginRow();
  JsonPrinter printer(out_, Layout::Line);
  printer.object([&] {
    const auto& [descriptor, equivalent, note, dependencyNotes, requirements] = metamodel;
    printer.field("name", ustring_to_utf8(descriptor.name));
    printer.field("version", textOf(descriptor.version));
    if (equivalent) printer.field("semver", textOf(*equivalent));
    printer.key("dependencies");
    writeNeeds(printer, metamodel);
    writeNote(printer, note);
  });
}

void JsonCatalogueWriter::addHop(const pathfinder::Hop& hop, const std::u16string& note) {
  if (!isInHops_) endMetamodels();
  beginRow();
  JsonPrinter printer(out_, Layout::Line);
  printer.object([&] {
    printer.field("name", ustring_to_utf8(hop.name));
    printer.field("from", textOf(hop.from));
    printer.field("to", textOf(hop.to));
    printer.field("expensive", hop.expensive);
    writeNote(printer, note);
  });
}

void JsonCatalogueWriter::setQuestion(const Question& question) {
  endHops();
  out_ << ",\n\"question\":";
  JsonPrinter printer(out_, Layout::Line);
  printer.object([&] { writeSides(printer, question); });
}

void JsonCatalogueWriter::finish() {
  endHops();
  out_ << "}\n";
}

void JsonCatalogueWriter::beginRow() {
  out_ << (isFirstRow_ ? "\n" : ",\n");
  isFirstRow_ = false;
}

void JsonCatalogueWriter::endMetamodels() {
  if (isInMetamodels_) out_ << "],\n\"hops\":[";
  isInMetamodels_ = false;
  isInHops_ = true;
  isFirstRow_ = true;
}

void JsonCatalogueWriter::endHops() {
  if (isInMetamodels_) endMetamodels();
  if (isInHops_) out_ << "]";
  isInHops_ = false;
}

}  // namespace tarn::evolution::catalogue
