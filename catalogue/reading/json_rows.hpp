#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>

#include "catalogue/reading/catalogue_rows.hpp"
#include "catalogue/reading/json_pieces.hpp"

/// The one reader of the JSON form of catalogues (see json_catalogue.hpp). It tells every fault of
/// the form and goes on; what becomes of a fault is for a policy to say, `JsonFaults`.
namespace tarn::evolution::catalogue {

/// What can be wrong with the form of a catalogue.
enum class JsonFault {
  WrongType,
  MissingField,
  UnknownField,
  DuplicateField,
  BadName,
  BadVersion,
  BadRange,
  BadEquivalent,
};

/// A value and where it stands, which is spelled out on demand only.
struct JsonSpot {
  const JsonValue& value;
  const JsonSpot* parent = nullptr;  ///< null for the root
  std::size_t index = 0;             ///< among the elements of the parent, if that is an array

  /// A JSON pointer, empty for the root.
  std::string pointer() const;

  Place place() const { return {pointer(), value.order}; }
};

class JsonFaults {
 public:
  virtual ~JsonFaults() = default;

  /// `spot` is the value at fault, for a missing field the object that lacks it. What this throws
  /// ends the reading.
  virtual void add(JsonFault fault, const JsonSpot& spot, const std::string& message) = 0;
};

/// The policy of those who want all of a text or nothing: the first fault is thrown as a
/// CatalogueError. A field that should not be there is a fault of its object.
class FirstJsonFault : public JsonFaults {
 public:
  [[noreturn]] void add(JsonFault fault, const JsonSpot& spot, const std::string& message) override;
};

/// Receives a catalogue row by row, in the order of the text. Of a row that is no object nothing
/// comes; of what stands twice, the first.
class JsonRowReceiver {
 public:
  virtual ~JsonRowReceiver() = default;

  virtual void receiveMetamodel(MetamodelRow row) = 0;
  virtual void receiveHop(HopRow row, bool isExpensive) = 0;
  virtual void receiveQuestion(std::optional<SelectionDraft> from,
                               std::optional<SelectionDraft> to) = 0;
};

/// Reads a catalogue, holding one row at a time. Returns why the text is not JSON; empty when it
/// is.
std::string readJsonRows(std::istream& in, JsonRowReceiver& receiver, JsonFaults& faults);

/// Whether a catalogue has a field of that name.
bool isCatalogueField(const std::string& name);

/// A field of a selection, {name: version}; none, with the faults told, when it is something else.
std::optional<SelectionRow> readSelectionRow(const JsonSpot& spot, JsonFaults& faults);

/// Tells that the value is not what it must be, such as "an array".
void addWrongType(const JsonSpot& spot, const std::string& wanted, JsonFaults& faults);

/// Tells that a field stands twice in its object.
void addDuplicateField(const JsonSpot& spot, JsonFaults& faults);

}  // namespace tarn::evolution::catalogue
