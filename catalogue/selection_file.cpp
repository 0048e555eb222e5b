#include "catalogue/selection_file.hpp"

#include <fstream>
#include <iterator>
#include <string>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/open_catalogue.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// Whether the file begins as a JSON object. One that cannot be read is said to, for the JSON
/// reader to say why.
bool isJson(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  char first = '{';
  in >> first;
  return first == '{';
}

}  // namespace

Selection readSelectionFile(const std::filesystem::path& file, QuestionSide side) {
  if (isJson(file)) return readJsonSelection(file, side);
  const auto question = openCatalogue(file)->getQuestion();
  if (!question) throw CatalogueError("", "the catalogue has no question").inFile(file.string());
  return side == QuestionSide::From ? question->from : question->to;
}

}  // namespace tarn::evolution::catalogue
