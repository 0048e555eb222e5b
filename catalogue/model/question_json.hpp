#pragma once

#include "catalogue/catalogue.hpp"
#include "catalogue/text/json_printer.hpp"

namespace tarn::evolution::catalogue {

/// Writes the fields "from" and "to" of a question, each {name: version} by ascending name.
void writeSides(JsonPrinter& printer, const Question& question);

}  // namespace tarn::evolution::catalogue
