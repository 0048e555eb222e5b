#include <algorithm>
#include <iomanip>
#include <map>
#include <ostream>

#include "catalogue/picture/baseline_output.hpp"
#include "catalogue/picture/metamodel_details.hpp"
#include "catalogue/text/note_lines.hpp"
#include "catalogue/text/plain_numbers.hpp"
#include "catalogue/text/visible.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;

namespace {

/// A list with a label before its first line.
class LabelledList {
 public:
  LabelledList(const char* label, std::ostream& out) : label_(label), out_(out) {}

  void add(const std::string& line) {
    out_ << "    " << padTo(9, label_) << line << "\n";
    label_ = "";
  }

  void addNote(const std::u16string& note) {
    for (const std::string& line : linesOf(fl::i18n::ustring_to_utf8(note))) {
      add("  " + toVisible(line));
    }
  }

 private:
  const char* label_;
  std::ostream& out_;
};

void writeHops(const VersionDetails& version, std::ostream& out) {
  LabelledList from("from", out);
  for (const Hop& hop : version.hopsIn) {
    from.add(visible(hop.from) + (hop.expensive ? "  expensive" : ""));
    from.addNote(version.hopNotes.of(hop));
  }
  LabelledList to("to", out);
  for (const Hop& hop : version.hopsOut) {
    to.add(visible(hop.to) + (hop.expensive ? "  expensive" : ""));
    to.addNote(version.hopNotes.of(hop));
  }
}

void writeVariants(const VersionDetails& version, std::ostream& out) {
  if (!version.variants) return;
  LabelledList variants("linked", out);
  if (version.variants->empty()) variants.add("not at all: what it needs cannot stand together");
  for (const auto& variant : *version.variants) {
    const bool isAlone = variant->linkedMetamodels.empty();
    variants.add(isAlone ? "alone" : "with " + listMembers(variant->linkedMetamodels));
  }
}

void writeVersion(const VersionDetails& version, std::ostream& out) {
  out << "  " << visible(version.metamodel.descriptor.version);
  if (version.metamodel.equivalent) out << " = " << *version.metamodel.equivalent;
  out << "\n";
  for (const std::string& line : linesOf(fl::i18n::ustring_to_utf8(version.metamodel.note))) {
    out << "    " << toVisible(line) << "\n";
  }
  LabelledList needs("needs", out);
  const auto& dependencies = version.metamodel.descriptor.dependencies;
  for (std::size_t i = 0; i < dependencies.size(); ++i) {
    needs.add(visible(dependencies[i].name) + " " + visible(dependencies[i].range));
    needs.addNote(version.metamodel.noteOfDependency(i));
  }
  for (const auto& [needed, note] : version.metamodel.requirements) {
    needs.add(visible(needed.name) + " " + visible(needed.range) +
              (needed.isOptional ? ", if it is there" : ", not linked"));
    needs.addNote(note);
  }
  writeHops(version, out);
  writeVariants(version, out);
}

}  // namespace

void writeSummaryText(const std::vector<MetamodelSummary>& all, Colouring colouring,
                      std::ostream& out) {
  const PlainNumbers plain(out);
  std::size_t nameColumns = countColumns("Metamodel");
  for (const MetamodelSummary& summary : all) {
    nameColumns = std::max(nameColumns, countColumns(visible(summary.name)));
  }
  out << emphasise(padTo(nameColumns, "Metamodel") + "  Versions", colouring) << "\n";
  for (const auto& [name, count, first, last] : all) {
    out << padTo(nameColumns, visible(name)) << "  " << std::setw(8) << count << "  "
        << visible(first);
    if (count > 1) out << " .. " << visible(last);
    out << "\n";
  }
}

void writeDetailsText(const std::vector<MetamodelDetails>& details, Colouring colouring,
                      std::ostream& out) {
  for (const MetamodelDetails& metamodel : details) {
    out << emphasise(visible(metamodel.name), colouring) << "\n";
    for (const VersionDetails& version : metamodel.versions) writeVersion(version, out);
  }
}

void writeBaselinesText(const std::vector<pathfinder::VersionBaseline>& baselines,
                        const Selection& selection, Colouring colouring, std::ostream& out) {
  if (baselines.empty()) out << noBaseline;
  std::size_t nameColumns = 0;
  for (const auto& baseline : baselines) {
    for (const auto& [name, linked] : baseline.metamodels) {
      if (linked) nameColumns = std::max(nameColumns, countColumns(visible(name)));
    }
  }
  for (std::size_t i = 0; i < baselines.size(); ++i) {
    out << headingOfBaseline(i, baselines.size(), colouring) << "\n";
    const auto& members = baselines[i].metamodels;
    for (const auto& [name, linked] : std::map(members.begin(), members.end())) {
      if (!linked) continue;
      out << (selection.contains(name) ? "  " : "+ ") << padTo(nameColumns, visible(name)) << "  "
          << visible(linked->version) << "\n";
    }
  }
}

}  // namespace tarn::evolution::catalogue
