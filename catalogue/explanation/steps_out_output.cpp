#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/explanation/step_stream_writer.hpp"
#include "catalogue/explanation/steps_out.hpp"
#include "catalogue/picture/baseline_output.hpp"
#include "catalogue/picture/step_listing_json.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// What was left out, and whether these are all; nothing when there is nothing to say.
void writeLeftOutText(const StepsOut& steps, std::ostream& out) {
  for (const Unlinkable& unlinkable : steps.unlinkable) {
    out << "Left out: ";
    writeUnlinkableText(unlinkable, out);
  }
  if (!steps.isComplete) out << "There may be more: the limit was reached.\n";
}

}  // namespace

void writeStepsOutText(const StepsOut& steps, Colouring colouring, std::ostream& out) {
  writeStepsText(steps.listings, colouring, out);
  writeLeftOutText(steps, out);
}

void writeStepsOutJson(const StepsOut& steps, std::ostream& out) {
  writeDocument(out, JsonPrinter::Layout::Indented, [&](JsonPrinter& printer) {
    writeListings(printer, steps.listings);
    printer.arrayField("unlinkable", [&] {
      for (const Unlinkable& unlinkable : steps.unlinkable) {
        printer.object([&] {
          printer.field("name", fl::i18n::ustring_to_utf8(unlinkable.chain.front().name));
          printer.field("version", textOf(unlinkable.chain.front().version));
        });
      }
    });
    printer.field("complete", steps.isComplete);
  });
}

StepStreamWriter::StepStreamWriter(BrowsableRepository& repository,
                                   const std::vector<pathfinder::VersionBaseline>& baselines,
                                   StepForm form, Colouring colouring, const Write& write)
    : repository_(repository),
      baselines_(baselines),
      form_(form),
      colouring_(colouring),
      write_(write) {}

void StepStreamWriter::beginBaseline() {
  steps_ = 0;
  const std::size_t place = begun_++;
  if (form_ != StepForm::Text || baselines_.size() == 1) return;
  write_((place == 0 ? "" : "\n") + headingOfBaseline(place, baselines_.size(), colouring_) + ": " +
         listMembers(baselines_[place].metamodels) + "\n");
}

void StepStreamWriter::write(const pathfinder::BaselineHop& step) {
  ++steps_;
  const StepListing listing = makeListing(repository_, step.from, {step});
  write_(form_ == StepForm::Text ? textOf(listing) : lineOf(listing));
}

void StepStreamWriter::finish(const StepsOut& found) {
  if (form_ != StepForm::Text) return;
  write_(written([&](std::ostream& out) {
    if (baselines_.empty()) out << noBaseline;
    writeLeftOutText(found, out);
  }));
}

std::string StepStreamWriter::textOf(const StepListing& listing) {
  const StepListing::Group& group = listing.groups.front();
  const std::string heading = "Step " + std::to_string(steps_) + ", " +
                              nameOfDirection(group.direction) + ", weight " +
                              weightText(group.picture.steps.front().weight);
  return written(
      [&](std::ostream& out) { StepTextWriter(group.picture, colouring_, out).write(heading, 0); });
}

std::string StepStreamWriter::lineOf(const StepListing& listing) {
  return written([&](std::ostream& out) {
    writeDocument(out, JsonPrinter::Layout::Line, [&](JsonPrinter& printer) {
      printer.key("baseline");
      writeMembers(printer, listing.baseline.metamodels);
      writeListedStep(printer, listing.groups.front(), 0);
    });
  });
}

}  // namespace tarn::evolution::catalogue
