#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>

#include "catalogue/picture/step_text.hpp"
#include "catalogue/text/json_printer.hpp"
#include "pathfinder/version_baseline.hpp"

namespace tarn::evolution::catalogue {

using LinkedByName =
    std::unordered_map<std::u16string, std::shared_ptr<pathfinder::LinkedMetamodel>>;

/// What is said where a selection has no baseline.
inline constexpr const char* noBaseline = "No baseline: the versions cannot stand together.\n";

/// "Baseline 1 of 2", as a heading; `place` counts from 0.
std::string headingOfBaseline(std::size_t place, std::size_t count, Colouring colouring);

/// "A 1.0.0, B 2.0.0", by ascending name, safe to print.
std::string listMembers(const LinkedByName& members);
inline std::string listMembers(const pathfinder::VersionBaseline& baseline) {
  return listMembers(baseline.metamodels);
}

/// Writes {"A": "1.0.0", "B": "2.0.0"}, by ascending name.
void writeMembers(JsonPrinter& printer, const LinkedByName& members);
inline void writeMembers(JsonPrinter& printer, const pathfinder::VersionBaseline& baseline) {
  writeMembers(printer, baseline.metamodels);
}

}  // namespace tarn::evolution::catalogue
