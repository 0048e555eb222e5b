#include "catalogue/reading/json_stream.hpp"

#include <set>
#include <string>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/reading/json_pieces.hpp"
#include "catalogue/reading/json_rows.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// Hands each row on, and refuses what is not of a catalogue's form.
class RowReceiver : public JsonPieceReceiver {
 public:
  explicit RowReceiver(CatalogueSink& sink) : sink_(sink) {}

  void enterField(const std::string& name) override {
    if (name != "metamodels" && name != "hops" && name != "question") {
      throw CatalogueError("", "there is no field \"" + name + "\" here");
    }
    if (!fields_.insert(name).second) {
      throw CatalogueError("", "the field \"" + name + "\" stands twice");
    }
  }

  void receiveElement(const std::string& field, std::size_t index, JsonValue value) override {
    const std::string place = "/" + field + "/" + std::to_string(index);
    if (field == "metamodels") {
      sink_.addMetamodel(readMetamodelRow(value, place));
    } else if (field == "hops") {
      sink_.addHop(readHopRow(value, place));
    }
  }

  void receiveField(JsonValue value) override {
    const std::string place = "/" + value.key;
    if (value.key == "question") {
      sink_.setQuestion(readQuestionRow(value, place));
    } else if (value.kind != JsonValue::Kind::Array) {
      throw CatalogueError(place, value.isNot("an array"));
    }
  }

  void receiveOtherRoot(JsonValue value) override {
    throw CatalogueError("", value.isNot("an object"));
  }

  void expectLists() const {
    for (const char* name : {"metamodels", "hops"}) {
      if (fields_.contains(name)) continue;
      throw CatalogueError("", "the field \"" + std::string(name) + "\" is missing");
    }
  }

 private:
  CatalogueSink& sink_;
  std::set<std::string> fields_;  // of the catalogue, met so far
};

}  // namespace

void streamJsonCatalogue(std::istream& in, CatalogueSink& sink) {
  RowReceiver receiver(sink);
  const std::string syntaxError = readJsonPieces(in, receiver);
  if (!syntaxError.empty()) throw CatalogueError("", "not JSON: " + syntaxError);
  receiver.expectLists();
}

std::string withoutPrefix(const std::string& message) {
  const std::size_t end = message.find("] ");
  return end == std::string::npos ? message : message.substr(end + 2);
}

}  // namespace tarn::evolution::catalogue
