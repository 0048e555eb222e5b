#include "catalogue/import/source_value.hpp"

#include <charconv>
#include <set>

namespace tarn::evolution::catalogue {

using SourceKind = SourceValue::Kind;

namespace {

/// A step of a JSON pointer.
std::string escapedStep(const std::string& step) {
  std::string escaped = "/";
  for (const char character : step) {
    if (character == '~') {
      escaped += "~0";
    } else if (character == '/') {
      escaped += "~1";
    } else {
      escaped += character;
    }
  }
  return escaped;
}

const char* kindName(SourceKind kind) {
  constexpr const char* names[] = {"null",   "true or false", "a number",
                                   "a text", "a list",        "an object"};
  return names[static_cast<std::size_t>(kind)];
}

}  // namespace

SourcePlace SourcePlace::in(std::size_t line, const std::string& step) const {
  return {file_, line, pointer_ + escapedStep(step)};
}

CatalogueError SourcePlace::error(const std::string& reason) const {
  std::string place = line_ == 0 ? "" : "line " + std::to_string(line_);
  if (!pointer_.empty()) place += (place.empty() ? "" : ", ") + pointer_;
  const CatalogueError error(place, reason);
  return file_ ? error.inFile(*file_) : error;
}

void SourceNode::failFor(const char* wanted) const {
  fail(std::string("must be ") + wanted + ", not " + kindName(value_->kind));
}

SourceNode SourceNode::child(const SourceValue& value, const std::string& step) const {
  return {value, place_.in(value.line, step)};
}

std::optional<SourceNode> SourceNode::find(const char* name) const {
  if (!isObject()) failFor("an object");
  const SourceValue* found = nullptr;
  for (const SourceValue& field : value_->children) {
    if (field.key != name) continue;
    if (found) child(field, name).fail("stands twice");
    found = &field;
  }
  if (!found || found->kind == SourceKind::Null) return std::nullopt;
  return child(*found, name);
}

SourceNode SourceNode::field(const char* name) const {
  if (auto found = find(name)) return *std::move(found);
  fail(std::string("the field \"") + name + "\" is missing");
}

std::string SourceNode::textField(const char* name) const {
  const SourceNode found = field(name);
  if (found.asText().empty()) found.fail("must not be empty");
  return found.asText();
}

std::string SourceNode::optionalText(const char* name) const {
  const auto found = find(name);
  return found ? found->asText() : "";
}

const std::string& SourceNode::asText() const {
  if (value_->kind != SourceKind::Text) failFor("a text");
  return value_->text;
}

bool SourceNode::asBoolean() const {
  if (!isBoolean()) failFor("true or false");
  return value_->text == "true";
}

std::uint64_t SourceNode::asIndex() const {
  if (value_->kind != SourceKind::Number && value_->kind != SourceKind::Text) failFor("a number");
  std::uint64_t number = 0;
  const char* const end = value_->text.data() + value_->text.size();
  const auto [parsed, error] = std::from_chars(value_->text.data(), end, number);
  if (error != std::errc() || parsed != end) fail("must be a whole number from 0 on");
  return number;
}

std::vector<SourceNode> SourceNode::elements() const {
  if (!isArray()) failFor("a list");
  std::vector<SourceNode> result;
  result.reserve(value_->children.size());
  for (const SourceValue& element : value_->children) {
    result.push_back(child(element, std::to_string(result.size())));
  }
  return result;
}

std::vector<SourceNode> SourceNode::elements(const char* name) const {
  const auto found = find(name);
  return found ? found->elements() : std::vector<SourceNode>();
}

std::vector<std::pair<std::string, SourceNode>> SourceNode::entries() const {
  if (!isObject()) failFor("an object");
  std::set<std::string> met;
  std::vector<std::pair<std::string, SourceNode>> result;
  result.reserve(value_->children.size());
  for (const SourceValue& field : value_->children) {
    if (!met.insert(field.key).second) child(field, field.key).fail("stands twice");
    result.emplace_back(field.key, child(field, field.key));
  }
  return result;
}

std::vector<std::pair<std::string, SourceNode>> SourceNode::entries(const char* name) const {
  const auto found = find(name);
  return found ? found->entries() : std::vector<std::pair<std::string, SourceNode>>();
}

}  // namespace tarn::evolution::catalogue
