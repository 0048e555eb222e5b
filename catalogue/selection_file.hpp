#pragma once

#include <filesystem>

#include "catalogue/catalogue.hpp"
#include "catalogue/explanation/question_side.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// Reads a selection from a file: a JSON file of the form {name: version}, or a catalogue of any
/// form that comes with a question, whose source or target is taken. What has an array or object
/// under "metamodels", "hops" or "question" is a catalogue.
///
/// Throws CatalogueError, which names the file, when it cannot be read, is of another form, or has
/// no question.
TARN_EVOLUTION_CATALOGUE_EXPORT Selection readSelectionFile(const std::filesystem::path& file,
                                                            QuestionSide side);

}  // namespace tarn::evolution::catalogue
