#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/catalogue_error.hpp"

namespace tarn::evolution::catalogue {

/// A value of a JSON or YAML document, with the line that it begins in. Fields keep their order.
struct SourceValue {
  enum class Kind { Null, Boolean, Number, Text, Array, Object };

  Kind kind = Kind::Null;
  std::size_t line = 0;
  std::string key;   ///< of a field
  std::string text;  ///< of a text or number, as it stands there; "true" or "false"
  std::vector<SourceValue> children;
};

/// Documents nested deeper are refused.
constexpr std::size_t deepestNesting = 100;

/// Where something stands in a source. Cheap to copy.
class SourcePlace {
 public:
  SourcePlace() = default;
  SourcePlace(std::shared_ptr<const std::string> file, std::size_t line, std::string pointer = {})
      : file_(std::move(file)), line_(line), pointer_(std::move(pointer)) {}

  SourcePlace in(std::size_t line, const std::string& step) const;

  /// The error to throw for what stands here.
  CatalogueError error(const std::string& reason) const;

  [[noreturn]] void fail(const std::string& reason) const { throw error(reason); }

  /// The result of `compute`; its std::invalid_argument becomes an error with this place.
  template <class Compute>
  auto orFail(const Compute& compute) const {
    try {
      return compute();
    } catch (const std::invalid_argument& error) {
      fail(error.what());
    }
  }

 private:
  std::shared_ptr<const std::string> file_;
  std::size_t line_ = 0;  // 0 when there is none to name
  std::string pointer_;
};

/// A value and its place: looks fields up, and throws CatalogueError, with file, line and pointer,
/// for what is not of the expected kind. Refers to the value, which must outlive it.
class SourceNode {
 public:
  SourceNode(const SourceValue& value, SourcePlace place)
      : value_(&value), place_(std::move(place)) {}

  const SourcePlace& place() const noexcept { return place_; }
  [[noreturn]] void fail(const std::string& reason) const { place_.fail(reason); }

  bool isObject() const { return value_->kind == SourceValue::Kind::Object; }
  bool isArray() const { return value_->kind == SourceValue::Kind::Array; }
  bool isBoolean() const { return value_->kind == SourceValue::Kind::Boolean; }

  /// The field, if there is one and it is not null; throws when it stands twice.
  std::optional<SourceNode> find(const char* name) const;

  /// A field that must be there.
  SourceNode field(const char* name) const;

  /// The text of a field that must be there, and must not be empty.
  std::string textField(const char* name) const;

  /// The text of a field; empty when it is not there.
  std::string optionalText(const char* name) const;

  const std::string& asText() const;  ///< of a text
  bool asBoolean() const;
  std::uint64_t asIndex() const;  ///< of a number, or of a text that reads as one

  std::vector<SourceNode> elements() const;

  /// Those of a field; none when it is not there.
  std::vector<SourceNode> elements(const char* name) const;

  /// The fields of an object; throws when one stands twice.
  std::vector<std::pair<std::string, SourceNode>> entries() const;

  /// Those of a field; none when it is not there.
  std::vector<std::pair<std::string, SourceNode>> entries(const char* name) const;

 private:
  [[noreturn]] void failFor(const char* wanted) const;
  SourceNode child(const SourceValue& value, const std::string& step) const;

  const SourceValue* value_;
  SourcePlace place_;
};

}  // namespace tarn::evolution::catalogue
