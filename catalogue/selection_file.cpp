#include "catalogue/selection_file.hpp"

#include <istream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/reading/file_error.hpp"
#include "catalogue/reading/json_file.hpp"
#include "catalogue/reading/json_stream.hpp"
#include "catalogue/reading/sqlite_header.hpp"
#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::json;

namespace {

/// Reads {name: version} as the parser goes through the text, and stops where this turns out to be
/// a catalogue. The functions' names and parameters are the parser's.
class SelectionReader : public nlohmann::json_sax<json> {
 public:
  bool isCatalogue() const { return isCatalogue_; }
  Selection& selection() { return selection_; }

  bool null() override { return refuse("null"); }
  bool boolean(bool /*value*/) override { return refuse("true or false"); }
  bool number_integer(std::int64_t /*value*/) override { return refuse("a number"); }
  bool number_unsigned(std::uint64_t /*value*/) override { return refuse("a number"); }
  bool number_float(double /*value*/, const std::string& /*text*/) override {
    return refuse("a number");
  }
  bool binary(json::binary_t& /*value*/) override { return refuse("binary data"); }

  bool string(std::string& text) override {
    if (!isOpen_) return refuse("a text");
    if (!orFail([&] { return selection_.emplace(parseName(name_), parseVersion(text)).second; })) {
      throw CatalogueError("", "the field \"" + name_ + "\" stands twice");
    }
    return true;
  }

  bool start_object(std::size_t /*size*/) override {
    if (isOpen_) return enterValue("an object");
    isOpen_ = true;
    return true;
  }

  bool key(std::string& name) override {
    name_ = name;
    return true;
  }

  bool end_object() override { return true; }
  bool start_array(std::size_t /*size*/) override { return enterValue("an array"); }
  bool end_array() override { return true; }

  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const json::exception& error) override {
    throw CatalogueError("", "not JSON: " + withoutPrefix(error.what()));
  }

 private:
  bool enterValue(const std::string& kind) {
    isCatalogue_ = name_ == "metamodels" || name_ == "hops" || name_ == "question";
    return isCatalogue_ ? false : refuse(kind);
  }

  [[noreturn]] bool refuse(const std::string& kind) const {
    if (!isOpen_) throw CatalogueError("", "must be an object, not " + kind);
    throw CatalogueError(place(), "must be a text, not " + kind);
  }

  std::string place() const { return (json::json_pointer() / name_).to_string(); }

  template <class Compute>
  bool orFail(const Compute& compute) const {
    try {
      return compute();
    } catch (const std::invalid_argument& error) {
      throw CatalogueError(place(), error.what());
    }
  }

  Selection selection_;
  std::string name_;
  bool isOpen_ = false;
  bool isCatalogue_ = false;
};

/// What the file begins with, blanks aside; NUL when it is empty.
char firstOf(std::istream& in) {
  char first = '\0';
  in >> first;
  in.seekg(0);
  return first;
}

/// The selection that a text consists of; none when it is a catalogue.
std::optional<Selection> readPlainSelection(std::istream& in) {
  if (firstOf(in) != '{') return std::nullopt;
  SelectionReader reader;
  json::sax_parse(in, &reader);
  if (reader.isCatalogue()) return std::nullopt;
  return std::move(reader.selection());
}

}  // namespace

Selection readSelectionFile(const std::filesystem::path& file, QuestionSide side) {
  if (!isDatabase(file)) {
    if (auto selection = readJsonFile(file, readPlainSelection)) return *std::move(selection);
  }
  const auto question = openCatalogue(file)->getQuestion();
  if (!question) failFor(file, "the catalogue has no question");
  return side == QuestionSide::From ? question->from : question->to;
}

}  // namespace tarn::evolution::catalogue
