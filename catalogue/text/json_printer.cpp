#include "catalogue/text/json_printer.hpp"

#include <nlohmann/json.hpp>
#include <ostream>

namespace tarn::evolution::catalogue {

void JsonPrinter::key(const std::string& name) {
  begin();
  write(name);
  out_ << (layout_ == Layout::Line ? ":" : ": ");
  isAfterKey_ = true;
}

void JsonPrinter::value(const std::string& text) {
  begin();
  write(text);
}

void JsonPrinter::value(bool truth) {
  begin();
  out_ << (truth ? "true" : "false");
}

void JsonPrinter::value(std::uint64_t number) {
  begin();
  out_ << std::to_string(number);  // whatever the stream does with numbers
}

void JsonPrinter::null() {
  begin();
  out_ << "null";
}

void JsonPrinter::anyText(const std::string& text) {
  begin();
  out_ << nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void JsonPrinter::json(std::string_view text) {
  begin();
  out_ << text;
}

void JsonPrinter::open(char bracket) {
  begin();
  out_ << bracket;
  isEmpty_.push_back(true);
}

void JsonPrinter::close(char bracket) {
  const bool isEmpty = isEmpty_.back();
  isEmpty_.pop_back();
  if (!isEmpty) breakLine();
  out_ << bracket;
}

/// Separates what comes from what is there.
void JsonPrinter::begin() {
  if (!isAfterKey_ && !isEmpty_.empty()) {
    if (!isEmpty_.back()) out_ << ",";
    isEmpty_.back() = false;
    breakLine();
  }
  isAfterKey_ = false;
}

void JsonPrinter::breakLine() {
  if (layout_ == Layout::Indented) out_ << "\n" << std::string(2 * isEmpty_.size(), ' ');
}

void JsonPrinter::write(const std::string& text) {
  out_ << nlohmann::json(text).dump();
}

}  // namespace tarn::evolution::catalogue
