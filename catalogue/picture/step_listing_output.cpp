#include <ostream>
#include <string>

#include "catalogue/picture/baseline_output.hpp"
#include "catalogue/picture/step_json.hpp"
#include "catalogue/picture/step_listing.hpp"
#include "catalogue/picture/step_listing_json.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionRepository;

const char* nameOfDirection(VersionRepository::Direction direction) {
  switch (direction) {
    case VersionRepository::Forward:
      return "forward";
    case VersionRepository::Backward:
      return "backward";
    default:
      return "mixed";
  }
}

void writeListedStep(JsonPrinter& printer, const StepListing::Group& group, std::size_t step) {
  printer.field("direction", nameOfDirection(group.direction));
  writeStepFields(printer, group.picture, group.picture.steps[step]);
}

namespace {

void writeGroups(const StepListing& listing, Colouring colouring, std::ostream& out) {
  if (listing.groups.empty()) out << "No step leads out of it.\n";
  for (const StepListing::Group& group : listing.groups) {
    const StepTextWriter writer(group.picture, colouring, out);
    for (std::size_t i = 0; i < group.picture.steps.size(); ++i) {
      std::string heading = nameOfDirection(group.direction);
      heading[0] = static_cast<char>(heading[0] - 'a' + 'A');
      writer.write(heading + " " + std::to_string(i + 1) + ", weight " +
                       weightText(group.picture.steps[i].weight),
                   i);
    }
  }
}

void writeSteps(JsonPrinter& printer, const StepListing& listing) {
  for (const StepListing::Group& group : listing.groups) {
    for (std::size_t step = 0; step < group.picture.steps.size(); ++step) {
      printer.object([&] { writeListedStep(printer, group, step); });
    }
  }
}

}  // namespace

void writeStepsText(const std::vector<StepListing>& listings, Colouring colouring,
                    std::ostream& out) {
  if (listings.empty()) out << noBaseline;
  for (std::size_t i = 0; i < listings.size(); ++i) {
    if (listings.size() > 1) {
      out << (i == 0 ? "" : "\n") << headingOfBaseline(i, listings.size(), colouring) << ": "
          << listMembers(listings[i].baseline.metamodels) << "\n";
    }
    writeGroups(listings[i], colouring, out);
  }
}

void writeListings(JsonPrinter& printer, const std::vector<StepListing>& listings) {
  printer.arrayField("baselines", [&] {
    for (const StepListing& listing : listings) {
      printer.object([&] {
        printer.key("metamodels");
        writeMembers(printer, listing.baseline.metamodels);
        printer.arrayField("steps", [&] { writeSteps(printer, listing); });
      });
    }
  });
}

void writeStepsJson(const std::vector<StepListing>& listings, std::ostream& out) {
  writeDocument(out, JsonPrinter::Layout::Indented,
                [&](JsonPrinter& printer) { writeListings(printer, listings); });
}

}  // namespace tarn::evolution::catalogue
