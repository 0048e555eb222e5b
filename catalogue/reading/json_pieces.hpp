#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace tarn::evolution::catalogue {

/// A value as it stands in a JSON text. Unlike in a parsed document, fields keep their order, and
/// one that stands twice is there twice. To destroy it takes no memory, other than the parser's own
/// documents do, which therefore nothing here is made of.
struct JsonValue {
  enum class Kind { Null, Boolean, Number, Text, Array, Object };  // in the order of kindText()

  Kind kind = Kind::Null;
  std::uint64_t order = 0;               ///< of its beginning, ascending through the text
  std::string key = {};                  ///< of a field
  std::string text = {};                 ///< of a text
  bool isTrue = false;                   ///< of true and false
  std::vector<JsonValue> children = {};  ///< elements of an array, fields of an object

  /// "an object", "a number" and so on.
  std::string kindText() const;

  /// The reason to give for a value that should have been something else, such as "an array".
  std::string isNot(const std::string& wanted) const;
};

/// Receives a document whose root is an object, piece by piece.
class JsonPieceReceiver {
 public:
  virtual ~JsonPieceReceiver() = default;

  /// A field of the root, by its name and where it begins, before anything that it holds.
  virtual void enterField(const JsonValue& /*field*/) {}

  /// The field entered last is an array or an object; whether to read on.
  virtual bool enterContainer() { return true; }

  /// An element of the field entered last, an array.
  virtual void receiveElement(std::size_t index, JsonValue value) = 0;

  /// The field entered last, after its elements if it is an array, which it then comes without.
  virtual void receiveField(JsonValue value) = 0;

  /// A root that is no object, without its content.
  virtual void receiveOtherRoot(JsonValue value) = 0;
};

/// Reads a JSON text and passes its pieces on; memory is that of the largest piece. Values nested
/// deeper below the root than any catalogue has them are passed on without what they hold.
///
/// Returns why the text is not JSON, as a sentence with line and column; empty when it is, or was
/// not read to its end.
std::string readJsonPieces(std::istream& in, JsonPieceReceiver& receiver);

}  // namespace tarn::evolution::catalogue
