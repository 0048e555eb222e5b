#include "catalogue/reading/json_pieces.hpp"

#include <istream>
#include <nlohmann/json.hpp>
#include <utility>

namespace tarn::evolution::catalogue {

using nlohmann::json;
using Kind = JsonValue::Kind;

namespace {

/// The parser's message without its own name in brackets before it.
std::string withoutPrefix(const std::string& message) {
  const std::size_t end = message.find("] ");
  return end == std::string::npos ? message : message.substr(end + 2);
}

/// Builds the pieces from the parser's events.
class PieceBuilder : public nlohmann::json_sax<json> {
 public:
  explicit PieceBuilder(JsonPieceReceiver& receiver) : receiver_(receiver) {}

  const std::string& error() const { return error_; }

  bool null() override { return scalar(Kind::Null); }
  bool boolean(bool value) override { return scalar(Kind::Boolean, {}, value); }
  bool number_integer(number_integer_t /*value*/) override { return scalar(Kind::Number); }
  bool number_unsigned(number_unsigned_t /*value*/) override { return scalar(Kind::Number); }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override {
    return scalar(Kind::Number);
  }
  bool string(string_t& value) override { return scalar(Kind::Text, std::move(value)); }
  bool binary(binary_t& /*value*/) override { return false; }

  bool key(string_t& value) override {
    key_ = std::move(value);
    if (open_.size() == 1 && ignored_ == 0)
      receiver_.enterField({.order = count_ + 1, .key = key_});
    return true;
  }
  bool start_object(std::size_t /*size*/) override { return open(Kind::Object); }
  bool start_array(std::size_t /*size*/) override { return open(Kind::Array); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }

  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const json::exception& error) override {
    error_ = "not JSON: " + withoutPrefix(error.what());
    return false;
  }

 private:
  /// How many containers a catalogue has within one another at most: the root, its metamodels, one
  /// of them, its dependencies, one of them, its range, the list of a union, one of its ranges.
  static constexpr std::size_t deepest = 8;

  JsonValue make(Kind kind) {
    JsonValue value;
    value.kind = kind;
    value.order = ++count_;
    value.key = std::move(key_);
    key_.clear();
    return value;
  }

  bool scalar(Kind kind, std::string text = {}, bool isTrue = false) {
    if (ignored_ > 0) return true;
    JsonValue value = make(kind);
    value.text = std::move(text);
    value.isTrue = isTrue;
    deliver(std::move(value));
    return true;
  }

  bool open(Kind kind) {
    if (ignored_ > 0) {
      ++ignored_;
    } else if (open_.size() == deepest) {
      deliver(make(kind));
      ignored_ = 1;
    } else {
      open_.push_back(make(kind));
      const bool isField = open_.size() == 2 && open_[0].kind == Kind::Object;
      if (isField) return receiver_.enterContainer();
    }
    return true;
  }

  bool close() {
    if (ignored_ > 0) {
      --ignored_;
      return true;
    }
    JsonValue value = std::move(open_.back());
    open_.pop_back();
    deliver(std::move(value));
    return true;
  }

  /// Passes a complete value on, or on to the value that holds it.
  void deliver(JsonValue value) {
    if (open_.empty()) {
      if (value.kind != Kind::Object) receiver_.receiveOtherRoot(std::move(value));
    } else if (open_.size() == 1 && open_[0].kind == Kind::Object) {
      elements_ = 0;
      receiver_.receiveField(std::move(value));
    } else if (open_.size() == 2 && open_[0].kind == Kind::Object && open_[1].kind == Kind::Array) {
      receiver_.receiveElement(elements_++, std::move(value));
    } else if (open_[0].kind == Kind::Object) {
      open_.back().children.push_back(std::move(value));
    }
  }

  JsonPieceReceiver& receiver_;
  std::string error_;
  std::string key_;              // read, its value not yet
  std::uint64_t count_ = 0;      // of values begun
  std::size_t elements_ = 0;     // of the root's field that is an array, so far
  std::size_t ignored_ = 0;      // containers that are open beyond the deepest
  std::vector<JsonValue> open_;  // containers, outermost first
};

}  // namespace

std::string JsonValue::kindText() const {
  constexpr const char* texts[] = {"null",   "true or false", "a number",
                                   "a text", "an array",      "an object"};
  return texts[static_cast<std::size_t>(kind)];
}

std::string JsonValue::isNot(const std::string& wanted) const {
  return "must be " + wanted + ", not " + kindText();
}

std::string readJsonPieces(std::istream& in, JsonPieceReceiver& receiver) {
  PieceBuilder builder(receiver);
  json::sax_parse(in, &builder);
  return builder.error();
}

}  // namespace tarn::evolution::catalogue
