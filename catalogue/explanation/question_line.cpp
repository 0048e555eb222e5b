#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/explanation/batch.hpp"
#include "catalogue/model/question_json.hpp"
#include "catalogue/reading/json_stream.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// Reads a question as that of a catalogue which holds nothing else and begins a line before.
class QuestionReader : public CatalogueSink {
 public:
  static Question read(const std::string& text) {
    std::istringstream in("{\"metamodels\": [], \"hops\": [], \"question\":\n" + text + "\n}");
    QuestionReader reader;
    try {
      streamJsonCatalogue(in, reader);
    } catch (const CatalogueError& error) {
      throw std::invalid_argument(describe(error));
    }
    if (!reader.question_) throw std::invalid_argument(R"(must be an object with "from" and "to")");
    return *std::move(reader.question_);
  }

  void addMetamodel(const CatalogueMetamodel& /*metamodel*/) override {}
  void addHop(const pathfinder::Hop& /*hop*/, const std::u16string& /*note*/) override {}
  void setQuestion(const Question& question) override { question_ = question; }

 private:
  static std::string describe(const CatalogueError& error) {
    const std::string prefix = "/question";
    const bool isWithin = error.place().starts_with(prefix);
    const std::string place = isWithin ? error.place().substr(prefix.size()) : error.place();
    std::string reason = error.reason();
    const std::string line = "at line 2, column";
    const std::size_t found = reason.find(line);
    if (found != std::string::npos) reason.replace(found, line.size(), "at column");
    return place.empty() ? reason : place + ": " + reason;
  }

  std::optional<Question> question_;
};

}  // namespace

Question readQuestion(const BatchQuestion& asked) {
  return QuestionReader::read(asked.text);
}

std::string questionLine(const Question& question) {
  return written([&](std::ostream& out) {
    writeDocument(out, JsonPrinter::Layout::Line,
                  [&](JsonPrinter& printer) { writeSides(printer, question); });
  });
}

}  // namespace tarn::evolution::catalogue
