#include "catalogue/selection_file.hpp"

#include <istream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <variant>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/reading/file_error.hpp"
#include "catalogue/reading/json_file.hpp"
#include "catalogue/reading/json_rows.hpp"
#include "catalogue/reading/sqlite_header.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// Reads {name: version}, and stops where the text turns out to be a catalogue.
class SelectionReader : public JsonPieceReceiver {
 public:
  /// None for a catalogue.
  std::optional<Selection> read(std::istream& in) {
    const std::string syntaxError = readJsonPieces(in, *this);
    if (isCatalogue_) return std::nullopt;
    if (!syntaxError.empty()) throw CatalogueError("", syntaxError);
    return std::move(selection_);
  }

  void enterField(const JsonValue& field) override { name_ = field.key; }

  bool enterContainer() override {
    isCatalogue_ = isCatalogueField(name_);
    return !isCatalogue_;
  }

  void receiveElement(std::size_t /*index*/, JsonValue /*value*/) override {}

  void receiveField(JsonValue value) override {
    const JsonSpot spot{value, &root_};
    auto row = readSelectionRow(spot, faults_);
    if (selection_.emplace(std::move(row->name), std::move(row->version)).second) return;
    addDuplicateField(spot, faults_);
  }

  void receiveOtherRoot(JsonValue value) override { addWrongType({value}, "an object", faults_); }

 private:
  FirstJsonFault faults_;
  const JsonValue rootValue_{.kind = JsonValue::Kind::Object};
  const JsonSpot root_{rootValue_};
  std::string name_;  // of the field entered last
  bool isCatalogue_ = false;
  Selection selection_;
};

std::optional<Selection> readPlainSelection(std::istream& in) {
  return SelectionReader().read(in);
}

/// A selection, or else the question of a catalogue.
using SelectionContent = std::variant<Selection, std::optional<Question>>;

/// Of a text that cannot be read again.
SelectionContent readOnce(std::istream& in) {
  std::istringstream text(std::string(std::istreambuf_iterator<char>(in), {}));
  if (auto selection = readPlainSelection(text)) return *std::move(selection);
  text.clear();
  text.seekg(0);
  return readJsonCatalogue(text).question();
}

SelectionContent readContent(const std::filesystem::path& file) {
  if (isReadOnce(file)) return readJsonFile(file, readOnce);
  if (!isDatabase(file)) {
    if (auto selection = readJsonFile(file, readPlainSelection)) return *std::move(selection);
  }
  return openCatalogue(file)->getQuestion();
}

}  // namespace

Selection readSelectionFile(const std::filesystem::path& file, QuestionSide side) {
  SelectionContent content = readContent(file);
  if (auto* selection = std::get_if<Selection>(&content)) return std::move(*selection);
  auto& question = std::get<std::optional<Question>>(content);
  if (!question) failFor(file, "the catalogue has no question");
  return side == QuestionSide::From ? question->from : question->to;
}

}  // namespace tarn::evolution::catalogue
