#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::evolution::catalogue {

/// Writes a JSON value to a stream, piece by piece as it is told. The stream's state tells of
/// failure. It holds no part of the value, so that what fails for want of memory fails in good
/// order: the documents of the JSON library cannot be destroyed then.
class JsonPrinter {
 public:
  enum class Layout {
    Line,      ///< all on one line, without blanks
    Indented,  ///< by two blanks for each level
  };

  JsonPrinter(std::ostream& out, Layout layout) : out_(out), layout_(layout) {}

  /// Within `body`, fields are told.
  template <class Body>
  void object(const Body& body) {
    open('{');
    body();
    close('}');
  }

  /// Within `body`, values are told.
  template <class Body>
  void array(const Body& body) {
    open('[');
    body();
    close(']');
  }

  /// The name of a field; its value is told next.
  void key(const std::string& name);

  void value(const std::string& text);
  void value(const char* text) { value(std::string(text)); }
  void value(bool truth);
  void value(std::uint64_t number);
  void null();

  /// Text that may be no UTF-8: bytes that do not fit become U+FFFD.
  void anyText(const std::string& text);

  /// A value that is written as JSON already.
  void json(std::string_view text);

  template <class Value>
  void field(const std::string& name, const Value& its) {
    key(name);
    value(its);
  }

  template <class Body>
  void objectField(const std::string& name, const Body& body) {
    key(name);
    object(body);
  }

  template <class Body>
  void arrayField(const std::string& name, const Body& body) {
    key(name);
    array(body);
  }

 private:
  void open(char bracket);
  void close(char bracket);
  void begin();
  void breakLine();
  void write(const std::string& text);

  std::ostream& out_;
  Layout layout_;
  std::vector<bool> isEmpty_;  // so far, the objects and arrays that are open, outermost first
  bool isAfterKey_ = false;
};

/// Writes a document: an object, whose fields `writeFields` tells the printer, and the end of its
/// last line.
template <class WriteFields>
void writeDocument(std::ostream& out, JsonPrinter::Layout layout, const WriteFields& writeFields) {
  JsonPrinter printer(out, layout);
  printer.object([&] { writeFields(printer); });
  out << "\n";
}

}  // namespace tarn::evolution::catalogue
