#include <ostream>

#include "catalogue/model/needs_json.hpp"
#include "catalogue/picture/baseline_output.hpp"
#include "catalogue/picture/metamodel_details.hpp"
#include "catalogue/text/dependency_json.hpp"
#include "catalogue/text/printed_text.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;

namespace {

using fl::i18n::ustring_to_utf8;

/// Writes the ends of hops that are not the version itself, as the field `end` of each.
void writeHops(JsonPrinter& printer, const std::string& field, const std::vector<Hop>& hops,
               const HopNotes& notes, const char* end, pathfinder::VersionId Hop::*version) {
  printer.arrayField(field, [&] {
    for (const Hop& hop : hops) {
      printer.object([&] {
        printer.field(end, textOf(hop.*version));
        printer.field("expensive", hop.expensive);
        writeNote(printer, notes.of(hop));
      });
    }
  });
}

void writeVersion(JsonPrinter& printer, const VersionDetails& version) {
  const pathfinder::Metamodel& descriptor = version.metamodel.descriptor;
  printer.object([&] {
    printer.field("version", textOf(descriptor.version));
    if (version.metamodel.equivalent)
      printer.field("semver", textOf(*version.metamodel.equivalent));
    writeNote(printer, version.metamodel.note);
    printer.key("dependencies");
    writeNeeds(printer, version.metamodel, Unlinked::Told);
    writeHops(printer, "hopsIn", version.hopsIn, version.hopNotes, "from", &Hop::from);
    writeHops(printer, "hopsOut", version.hopsOut, version.hopNotes, "to", &Hop::to);
    if (!version.variants) return;
    printer.arrayField("variants", [&] {
      for (const auto& variant : *version.variants)
        writeMembers(printer, variant->linkedMetamodels);
    });
  });
}

/// Writes an object whose one field is a list.
template <class WriteItems>
void writeList(const char* field, std::ostream& out, const WriteItems& writeItems) {
  writeDocument(out, JsonPrinter::Layout::Indented, [&](JsonPrinter& printer) {
    printer.arrayField(field, [&] { writeItems(printer); });
  });
}

}  // namespace

void writeSummaryJson(const std::vector<MetamodelSummary>& all, std::ostream& out) {
  writeList("metamodels", out, [&](JsonPrinter& printer) {
    for (const MetamodelSummary& each : all) {
      printer.object([&] {
        printer.field("name", ustring_to_utf8(each.name));
        printer.field("versions", std::uint64_t{each.count});
        printer.field("first", textOf(each.first));
        printer.field("last", textOf(each.last));
      });
    }
  });
}

void writeDetailsJson(const std::vector<MetamodelDetails>& details, std::ostream& out) {
  writeList("metamodels", out, [&](JsonPrinter& printer) {
    for (const MetamodelDetails& metamodel : details) {
      printer.object([&] {
        printer.field("name", ustring_to_utf8(metamodel.name));
        printer.arrayField("versions", [&] {
          for (const VersionDetails& version : metamodel.versions) writeVersion(printer, version);
        });
      });
    }
  });
}

void writeBaselinesJson(const std::vector<pathfinder::VersionBaseline>& baselines,
                        std::ostream& out) {
  writeList("baselines", out, [&](JsonPrinter& printer) {
    for (const auto& baseline : baselines) writeMembers(printer, baseline.metamodels);
  });
}

}  // namespace tarn::evolution::catalogue
