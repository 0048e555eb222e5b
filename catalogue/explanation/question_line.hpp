#pragma once

#include <string>

#include "catalogue/catalogue.hpp"

namespace tarn::evolution::catalogue {

/// Reads a question as it stands in a line: {"from": {name: version}, "to": {name: version}}.
/// Throws std::invalid_argument, with what is wrong and where in the line, for any other text.
Question readQuestionLine(const std::string& text);

/// The line of a question, without a line break; equal questions have equal ones.
std::string lineOfQuestion(const Question& question);

}  // namespace tarn::evolution::catalogue
