#pragma once

#include <vector>

#include "catalogue/picture/step_listing.hpp"
#include "catalogue/text/json_printer.hpp"

namespace tarn::evolution::catalogue {

/// "forward", "backward" or "mixed".
const char* nameOfDirection(pathfinder::VersionRepository::Direction direction);

/// Writes the fields of one step of `writeStepsJson`.
void writeListedStep(JsonPrinter& printer, const StepListing::Group& group, std::size_t step);

/// Writes the field "baselines" of `writeStepsJson`.
void writeListings(JsonPrinter& printer, const std::vector<StepListing>& listings);

}  // namespace tarn::evolution::catalogue
