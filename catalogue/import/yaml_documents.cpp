#include <yaml.h>

#include <exception>
#include <map>
#include <optional>
#include <utility>

#include "catalogue/import/documents.hpp"

namespace tarn::evolution::catalogue {

namespace {

using NodeKind = SourceValue::Kind;

/// How many values a document may have, all aliases followed: an alias of aliases of aliases is
/// soon more than any memory holds.
constexpr std::size_t mostValues = 10'000'000;

std::size_t sizeOfTree(const SourceValue& value) {
  std::size_t size = 1;
  for (const SourceValue& child : value.children) size += sizeOfTree(child);
  return size;
}

/// An event of the parser, which frees what it holds.
class YamlEvent {
 public:
  YamlEvent() = default;
  YamlEvent(const YamlEvent&) = delete;
  YamlEvent& operator=(const YamlEvent&) = delete;
  ~YamlEvent() { yaml_event_delete(&event_); }

  yaml_event_t* operator->() { return &event_; }
  yaml_event_t* get() { return &event_; }

  std::size_t line() const { return event_.start_mark.line + 1; }

 private:
  yaml_event_t event_{};
};

std::string textOf(const yaml_char_t* text) {
  return text ? reinterpret_cast<const char*>(text) : "";
}

/// The parser over a file. An exception while it reads waits until it has returned: it is C.
class YamlParser {
 public:
  explicit YamlParser(SourceFile& file) : file_(file) {
    if (yaml_parser_initialize(&parser_) == 0) throw std::bad_alloc();
    yaml_parser_set_input(&parser_, &YamlParser::read, this);
  }
  YamlParser(const YamlParser&) = delete;
  YamlParser& operator=(const YamlParser&) = delete;
  ~YamlParser() { yaml_parser_delete(&parser_); }

  void next(YamlEvent& event) {
    if (yaml_parser_parse(&parser_, event.get()) != 0) return;
    if (failure_) std::rethrow_exception(failure_);
    if (parser_.error == YAML_MEMORY_ERROR) throw std::bad_alloc();
    std::string reason = parser_.problem ? parser_.problem : "it cannot be read";
    if (parser_.context) reason = std::string(parser_.context) + ", " + reason;
    file_.place(parser_.problem_mark.line + 1).fail("not YAML: " + reason);
  }

 private:
  static int read(void* self, unsigned char* buffer, std::size_t size, std::size_t* count) {
    auto& parser = *static_cast<YamlParser*>(self);
    try {
      *count = parser.file_.read(reinterpret_cast<char*>(buffer), size);
      return 1;
    } catch (...) {
      parser.failure_ = std::current_exception();
      return 0;
    }
  }

  SourceFile& file_;
  yaml_parser_t parser_{};
  std::exception_ptr failure_;
};

/// Builds a document from the parser's events.
class YamlBuilder {
 public:
  explicit YamlBuilder(const SourceFile& file) : file_(file) {}

  const SourceValue& document() const { return root_; }

  void scalar(YamlEvent& event) {
    const auto& scalar = event->data.scalar;
    std::string text(reinterpret_cast<const char*>(scalar.value), scalar.length);
    if (expectsKey()) {
      if (text == "<<" && scalar.style == YAML_PLAIN_SCALAR_STYLE) {
        place(event).fail("keys that merge other values are not understood");
      }
      key_ = std::move(text);
      return;
    }
    SourceValue& value = add(event);
    value.kind = NodeKind::Text;
    value.text = std::move(text);
    if (scalar.style == YAML_PLAIN_SCALAR_STYLE) resolvePlain(value);
    remember(textOf(scalar.anchor), value);
  }

  void alias(YamlEvent& event) {
    const auto found = anchors_.find(textOf(event->data.alias.anchor));
    if (found == anchors_.end()) place(event).fail("the alias refers to nothing before it");
    if (open_.size() >= deepestNesting / 2) place(event).fail("is nested too deep");
    count_ += sizeOfTree(found->second);
    SourceValue& value = add(event);
    std::string key = std::move(value.key);
    value = found->second;
    value.key = std::move(key);
  }

  void open(YamlEvent& event, NodeKind kind, const yaml_char_t* anchor) {
    if (open_.size() >= deepestNesting / 2) place(event).fail("is nested too deep");
    SourceValue& value = add(event);
    value.kind = kind;
    open_.push_back(&value);
    anchored_.push_back(textOf(anchor));
  }

  void close() {
    remember(anchored_.back(), *open_.back());
    open_.pop_back();
    anchored_.pop_back();
  }

 private:
  bool expectsKey() const {
    return !open_.empty() && open_.back()->kind == NodeKind::Object && !key_;
  }

  SourcePlace place(const YamlEvent& event) const { return file_.place(event.line()); }

  SourceValue& add(YamlEvent& event) {
    if (expectsKey()) place(event).fail("a key must be a text");
    if (++count_ > mostValues) place(event).fail("the document has too many values");
    SourceValue& value = open_.empty() ? root_ : open_.back()->children.emplace_back();
    value.line = event.line();
    if (key_) value.key = *std::exchange(key_, std::nullopt);
    return value;
  }

  static void resolvePlain(SourceValue& value) {
    const std::string& text = value.text;
    if (text.empty() || text == "~" || text == "null" || text == "Null" || text == "NULL") {
      value.kind = NodeKind::Null;
    } else if (text == "true" || text == "True" || text == "TRUE") {
      value.kind = NodeKind::Boolean;
      value.text = "true";
    } else if (text == "false" || text == "False" || text == "FALSE") {
      value.kind = NodeKind::Boolean;
      value.text = "false";
    }
  }

  void remember(const std::string& anchor, const SourceValue& value) {
    if (anchor.empty()) return;
    count_ += sizeOfTree(value);
    anchors_[anchor] = value;
  }

  const SourceFile& file_;
  SourceValue root_;
  std::vector<SourceValue*> open_;
  std::vector<std::string> anchored_;  // the anchors of what is open
  std::optional<std::string> key_;     // that the next value has
  std::map<std::string, SourceValue> anchors_;
  std::size_t count_ = 0;
};

}  // namespace

void readYamlDocuments(SourceFile& file, const UseDocument& use) {
  YamlParser parser(file);
  std::optional<YamlBuilder> builder;
  bool isEmpty = true;
  for (bool isAtEnd = false; !isAtEnd;) {
    YamlEvent event;
    parser.next(event);
    switch (event->type) {
      case YAML_DOCUMENT_START_EVENT:
        builder.emplace(file);
        break;
      case YAML_SCALAR_EVENT:
        builder->scalar(event);
        break;
      case YAML_ALIAS_EVENT:
        builder->alias(event);
        break;
      case YAML_MAPPING_START_EVENT:
        builder->open(event, NodeKind::Object, event->data.mapping_start.anchor);
        break;
      case YAML_SEQUENCE_START_EVENT:
        builder->open(event, NodeKind::Array, event->data.sequence_start.anchor);
        break;
      case YAML_MAPPING_END_EVENT:
      case YAML_SEQUENCE_END_EVENT:
        builder->close();
        break;
      case YAML_DOCUMENT_END_EVENT:
        // Nothing between two separators is no document.
        if (builder->document().kind == NodeKind::Null) break;
        use({builder->document(), file.place(builder->document().line)});
        isEmpty = false;
        break;
      case YAML_STREAM_END_EVENT:
        isAtEnd = true;
        break;
      default:
        break;
    }
  }
  if (isEmpty) file.place().fail("the file is empty");
}

void readDocuments(SourceFile& file, const UseDocument& use) {
  if (file.name()->ends_with(".yaml") || file.name()->ends_with(".yml")) {
    readYamlDocuments(file, use);
  } else {
    readJsonDocuments(file, use);
  }
}

}  // namespace tarn::evolution::catalogue
