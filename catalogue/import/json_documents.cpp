#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "catalogue/import/documents.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::json;

namespace {

using DocumentKind = SourceValue::Kind;

/// The bytes of a file for the parser, which reads none beyond the end of a list or object.
class FileIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = char;

  explicit FileIterator(SourceFile* file) : file_(file) {}

  char operator*() const { return static_cast<char>(file_->peek()); }
  FileIterator& operator++() {
    file_->skip();
    return *this;
  }
  bool operator==(const FileIterator& other) const { return isAtEnd() == other.isAtEnd(); }
  bool operator!=(const FileIterator& other) const { return !(*this == other); }

 private:
  bool isAtEnd() const { return !file_ || file_->peek() == EOF; }

  SourceFile* file_;
};

/// Builds a document from the parser's events.
class DocumentBuilder : public nlohmann::json_sax<json> {
 public:
  DocumentBuilder(const SourceFile& file, const IsWanted& isWanted)
      : file_(file), isWanted_(isWanted) {}

  SourceValue takeDocument() { return std::move(root_); }

  bool null() override { return scalar(DocumentKind::Null, {}); }
  bool boolean(bool value) override {
    return scalar(DocumentKind::Boolean, value ? "true" : "false");
  }
  bool number_integer(number_integer_t value) override {
    return scalar(DocumentKind::Number, std::to_string(value));
  }
  bool number_unsigned(number_unsigned_t value) override {
    return scalar(DocumentKind::Number, std::to_string(value));
  }
  bool number_float(number_float_t /*value*/, const string_t& text) override {
    return scalar(DocumentKind::Number, text);
  }
  bool string(string_t& value) override { return scalar(DocumentKind::Text, std::move(value)); }
  bool binary(binary_t& /*value*/) override { return false; }

  bool key(string_t& value) override {
    if (unwanted_ > 0) return true;
    key_ = std::move(value);
    isSkipping_ = isWanted_ && !isWanted_(countOpenObjects(), key_);
    return true;
  }
  bool start_object(std::size_t /*size*/) override { return open(DocumentKind::Object); }
  bool start_array(std::size_t /*size*/) override { return open(DocumentKind::Array); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }

  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const json::exception& error) override {
    // "[json.exception...] parse error at line 1, column 2: reason", counted from the document on,
    // or "[json.exception...] reason"
    const std::string message = error.what();
    std::size_t reason = message.find(": ");
    if (reason == std::string::npos) reason = message.find("] ");
    file_.place().fail("not JSON: " +
                       (reason == std::string::npos ? message : message.substr(reason + 2)));
  }

 private:
  std::size_t countOpenObjects() const {
    return static_cast<std::size_t>(std::count_if(
        open_.begin(), open_.end(),
        [](const SourceValue* value) { return value->kind == DocumentKind::Object; }));
  }

  SourceValue* add(DocumentKind kind, std::string text) {
    SourceValue& value = open_.empty() ? root_ : open_.back()->children.emplace_back();
    value.kind = kind;
    value.line = file_.line();
    value.key = std::move(key_);
    value.text = std::move(text);
    key_.clear();
    return &value;
  }

  /// Whether the value that comes is not wanted; that is asked once for each.
  bool skipsNext() { return std::exchange(isSkipping_, false) || unwanted_ > 0; }

  bool scalar(DocumentKind kind, std::string text) {
    if (!skipsNext()) add(kind, std::move(text));
    return true;
  }

  // What is open are the last elements of what is open around them, so that none of them moves.
  bool open(DocumentKind kind) {
    if (skipsNext()) {
      ++unwanted_;
    } else {
      if (open_.size() >= deepestNesting) file_.place().fail("is nested too deep");
      open_.push_back(add(kind, {}));
    }
    return true;
  }

  bool close() {
    if (unwanted_ > 0) {
      --unwanted_;
    } else {
      open_.pop_back();
    }
    return true;
  }

  const SourceFile& file_;
  const IsWanted& isWanted_;
  SourceValue root_;
  std::vector<SourceValue*> open_;
  std::string key_;
  bool isSkipping_ = false;
  std::size_t unwanted_ = 0;  // lists and objects that are open within what is not wanted
};

bool skipBlanks(SourceFile& file) {
  for (int next = file.peek(); next != EOF; next = file.peek()) {
    if (next != ' ' && next != '\t' && next != '\r' && next != '\n') return true;
    file.skip();
  }
  return false;
}

}  // namespace

void readJsonDocuments(SourceFile& file, const UseDocument& use, const IsWanted& isWanted) {
  bool isFirst = true;
  for (; skipBlanks(file); isFirst = false) {
    const char begin = static_cast<char>(file.peek());
    if (begin != '{' && begin != '[' && !isFirst) file.place().fail("not JSON: expected { or [");
    DocumentBuilder builder(file, isWanted);
    json::sax_parse(FileIterator(&file), FileIterator(nullptr), &builder,
                    json::input_format_t::json, false);
    const SourceValue document = builder.takeDocument();
    use({document, file.place(document.line)});
  }
  if (isFirst) file.place().fail("not JSON: the file is empty");
}

}  // namespace tarn::evolution::catalogue
