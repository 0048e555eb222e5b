#include "catalogue/explanation/question_line.hpp"

#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/reading/json_stream.hpp"
#include "catalogue/text/json_printer.hpp"
#include "catalogue/text/printed_text.hpp"
#include "platform/text.hpp"

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

void writeSide(JsonPrinter& printer, const char* side, const Selection& selection) {
  printer.objectField(side, [&] {
    for (const auto& [name, version] : std::map(selection.begin(), selection.end())) {
      printer.field(fl::i18n::ustring_to_utf8(name), textOf(version));
    }
  });
}

}  // namespace

Question readQuestionLine(const std::string& text) {
  return QuestionReader::read(text);
}

std::string lineOfQuestion(const Question& question) {
  std::ostringstream out;
  out.exceptions(std::ios::badbit);  // rather than to be cut short where memory is
  JsonPrinter printer(out, JsonPrinter::Layout::Line);
  printer.object([&] {
    writeSide(printer, "from", question.from);
    writeSide(printer, "to", question.to);
  });
  return std::move(out).str();
}

}  // namespace tarn::evolution::catalogue
