#pragma once

#include <cstddef>
#include <string>

#include "catalogue/picture/step_text.hpp"
#include "catalogue/text/json_printer.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::catalogue {

/// What is said where a selection has no baseline.
inline constexpr const char* noBaseline = "No baseline: the versions cannot stand together.\n";

/// "Baseline 1 of 2", as a heading; `place` counts from 0.
std::string headingOfBaseline(std::size_t place, std::size_t count, Colouring colouring);

// Null entries hold nothing and are passed over.

/// "A 1.0.0, B 2.0.0", by ascending name, safe to print.
std::string listMembers(const pathfinder::VersionBaseline::Entries& members);

/// Writes {"A": "1.0.0", "B": "2.0.0"}, by ascending name.
void writeMembers(JsonPrinter& printer, const pathfinder::VersionBaseline::Entries& members);

}  // namespace tarn::evolution::catalogue
