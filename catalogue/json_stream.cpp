#include "catalogue/json_stream.hpp"

#include <istream>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/json_rows.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::json;

namespace {

/// Builds one value from the parser's events. Refuses a field that stands twice in one object.
class ValueBuilder {
 public:
  /// Begins a value that stands at `place`.
  void begin(std::string place) {
    place_ = std::move(place);
    open_.clear();
  }

  bool isComplete() const { return open_.empty(); }
  const json& value() const { return value_; }
  const std::string& place() const { return place_; }

  void add(json value) { addTo(std::move(value)); }
  void open(json container) { open_.push_back({addTo(std::move(container)), {}}); }
  void close() { open_.pop_back(); }

  void key(const std::string& name) {
    if (open_.back().container->contains(name)) {
      throw CatalogueError(innermostPlace(), "the field \"" + name + "\" stands twice");
    }
    open_.back().key = name;
  }

 private:
  struct Open {
    json* container;
    std::string key;  // of the field that the parser is at, in an object
  };

  json* addTo(json value) {
    if (open_.empty()) return &(value_ = std::move(value));
    auto& [container, key] = open_.back();
    if (!container->is_array()) return &((*container)[key] = std::move(value));
    container->push_back(std::move(value));
    return &container->back();
  }

  std::string innermostPlace() const {
    json::json_pointer result(place_);
    for (std::size_t i = 0; i + 1 < open_.size(); ++i) {
      const auto& [container, key] = open_[i];
      result /= container->is_array() ? std::to_string(container->size() - 1) : key;
    }
    return result.to_string();
  }

  std::string place_;
  json value_;
  std::vector<Open> open_;  // outermost first
};

/// Takes the parser's events, and hands each row on when its last one has come.
class RowHandler : public json::json_sax_t {
 public:
  explicit RowHandler(CatalogueSink& sink) : sink_(sink) {}

  bool null() override { return add(nullptr); }
  bool boolean(bool value) override { return add(value); }
  bool number_integer(number_integer_t value) override { return add(value); }
  bool number_unsigned(number_unsigned_t value) override { return add(value); }
  bool number_float(number_float_t value, const string_t& /*text*/) override { return add(value); }
  bool string(string_t& value) override { return add(std::move(value)); }
  bool binary(binary_t& value) override { return add(std::move(value)); }
  bool start_object(std::size_t /*size*/) override { return open(json::object()); }
  bool start_array(std::size_t /*size*/) override { return open(json::array()); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }

  bool key(string_t& name) override {
    if (level_ == Level::Root) {
      enterField(name);
    } else {
      builder_.key(name);
    }
    return true;
  }

  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const json::exception& error) override {
    throw CatalogueError("", "not JSON: " + withoutPrefix(error.what()));
  }

 private:
  enum class Level {
    Document,  // nothing has come yet
    Root,      // between the fields of the catalogue
    List,      // between the rows of a list
    Row,       // within a row, or within the question
  };

  void enterField(const std::string& name) {
    if (name != "metamodels" && name != "hops" && name != "question") {
      throw CatalogueError("", "there is no field \"" + name + "\" here");
    }
    if (!fields_.insert(name).second) {
      throw CatalogueError("", "the field \"" + name + "\" stands twice");
    }
    field_ = name;
    rows_ = 0;
  }

  /// Makes ready for a value that is about to come; whether it is (part of) a row.
  bool beginRow(const json& value) {
    switch (level_) {
      case Level::Row:
        return true;
      case Level::List:
        builder_.begin("/" + field_ + "/" + std::to_string(rows_++));
        break;
      case Level::Document:
        if (!value.is_object()) throw CatalogueError("", wrongKind(value, "an object"));
        level_ = Level::Root;
        return false;
      case Level::Root:
        if (field_ != "question") {
          if (!value.is_array()) throw CatalogueError("/" + field_, wrongKind(value, "an array"));
          level_ = Level::List;
          return false;
        }
        builder_.begin("/" + field_);
    }
    level_ = Level::Row;
    return true;
  }

  bool add(json value) {
    if (beginRow(value)) {
      builder_.add(std::move(value));
      endRowIfComplete();
    }
    return true;
  }

  bool open(json container) {
    if (beginRow(container)) builder_.open(std::move(container));
    return true;
  }

  bool close() {
    if (level_ == Level::Row) {
      builder_.close();
      endRowIfComplete();
    } else if (level_ == Level::List) {
      level_ = Level::Root;
    } else {
      expectLists();
    }
    return true;
  }

  void endRowIfComplete() {
    if (!builder_.isComplete()) return;
    if (field_ == "question") {
      sink_.setQuestion(readQuestionRow(builder_.value(), builder_.place()));
      level_ = Level::Root;
      return;
    }
    if (field_ == "metamodels") {
      sink_.addMetamodel(readMetamodelRow(builder_.value(), builder_.place()));
    } else {
      sink_.addHop(readHopRow(builder_.value(), builder_.place()));
    }
    level_ = Level::List;
  }

  void expectLists() const {
    for (const char* name : {"metamodels", "hops"}) {
      if (fields_.contains(name)) continue;
      throw CatalogueError("", "the field \"" + std::string(name) + "\" is missing");
    }
  }

  CatalogueSink& sink_;
  Level level_ = Level::Document;
  std::set<std::string> fields_;  // of the catalogue, met so far
  std::string field_;             // the one that the parser is in
  std::size_t rows_ = 0;          // of it, begun so far
  ValueBuilder builder_;
};

}  // namespace

void streamJsonCatalogue(std::istream& in, CatalogueSink& sink) {
  RowHandler handler(sink);
  json::sax_parse(in, &handler);
}

std::string withoutPrefix(const std::string& message) {
  const std::size_t end = message.find("] ");
  return end == std::string::npos ? message : message.substr(end + 2);
}

}  // namespace tarn::evolution::catalogue
