#pragma once

#include "catalogue/picture/path_plan.hpp"
#include "catalogue/text/json_printer.hpp"

namespace tarn::evolution::catalogue {

/// Writes the fields of a plan.
void writePlanFields(JsonPrinter& printer, const PathPlan& plan);

/// Writes the field "question".
void writeQuestionField(JsonPrinter& printer, const Question& question);

/// Writes the fields "form", "found" and "question", with which every answer begins.
void writeAnswerHead(JsonPrinter& printer, bool isFound, const Question& question);

}  // namespace tarn::evolution::catalogue
