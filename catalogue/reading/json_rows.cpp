#include "catalogue/reading/json_rows.hpp"

#include <algorithm>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/utf16.hpp"
#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::json;
using pathfinder::VersionRange;
using Kind = JsonValue::Kind;

namespace {

json::json_pointer pointerTo(const JsonSpot& spot) {
  if (spot.parent == nullptr) return json::json_pointer();
  const json::json_pointer before = pointerTo(*spot.parent);
  const bool isElement = spot.parent->value.kind == Kind::Array;
  return isElement ? before / spot.index : before / spot.value.key;
}

const JsonValue* findField(const JsonSpot& object, const std::string& name) {
  for (const JsonValue& field : object.value.children) {
    if (field.key == name) return &field;
  }
  return nullptr;
}

/// Reads the values of which rows consist, and tells the faults.
class RowReader {
 public:
  explicit RowReader(JsonFaults& faults) : faults_(faults) {}

  std::optional<MetamodelRow> readMetamodel(const JsonSpot& spot) {
    if (!expectObject(spot, {"name", "version", "dependencies", "semver", "note"}))
      return std::nullopt;
    auto dependencies = requiredField(
        spot, "dependencies", [&](const JsonSpot& field) { return readDependencies(field); });
    MetamodelRow row{.number = spot.index,
                     .order = spot.value.order,
                     .name = nameField(spot),
                     .version = versionField(spot, "version"),
                     .dependencies = std::move(dependencies),
                     .note = noteField(spot)};
    if (const JsonValue* field = findField(spot, "semver")) {
      row.equivalent = readEquivalent({*field, &spot}, row);
    }
    return row;
  }

  std::optional<HopRow> readHop(const JsonSpot& spot, bool& isExpensive) {
    if (!expectObject(spot, {"name", "from", "to", "expensive", "note"})) return std::nullopt;
    HopRow row{.number = spot.index,
               .order = spot.value.order,
               .name = nameField(spot),
               .from = versionField(spot, "from"),
               .to = versionField(spot, "to"),
               .note = noteField(spot)};
    isExpensive = requiredField(spot, "expensive", [&](const JsonSpot& field) {
      return expect(field, Kind::Boolean, "true or false") && field.value.isTrue;
    });
    return row;
  }

  std::optional<SelectionDraft> readSide(const JsonSpot& question, const std::string& name) {
    return requiredField(question, name, [&](const JsonSpot& spot) { return readSelection(spot); });
  }

  std::optional<SelectionRow> readSelected(const JsonSpot& spot) {
    auto name = orFault(JsonFault::BadName, spot, [&] { return parseName(spot.value.key); });
    auto version = parsedText(JsonFault::BadVersion, spot, parseVersion);
    if (!name || !version) return std::nullopt;
    return SelectionRow{spot.place(), *std::move(name), *std::move(version)};
  }

  bool expect(const JsonSpot& spot, Kind kind, const std::string& wanted) {
    if (spot.value.kind != kind) addWrongType(spot, wanted, faults_);
    return spot.value.kind == kind;
  }

  /// Whether it is an object. It may have fields of these names; with none, of any.
  bool expectObject(const JsonSpot& object, std::initializer_list<const char*> names = {}) {
    if (!expect(object, Kind::Object, "an object")) return false;
    std::set<std::string> met;
    for (const JsonValue& field : object.value.children) {
      const JsonSpot spot{field, &object};
      if (!met.insert(field.key).second) {
        addDuplicateField(spot, faults_);
      } else if (names.size() > 0 &&
                 std::find(names.begin(), names.end(), field.key) == names.end()) {
        addUnknown(spot);
      }
    }
    return true;
  }

  void addUnknown(const JsonSpot& spot) {
    faults_.add(JsonFault::UnknownField, spot, "there is no field \"" + spot.value.key + "\" here");
  }

  void addMissing(const JsonSpot& object, const std::string& name) {
    faults_.add(JsonFault::MissingField, object, "the field \"" + name + "\" is missing");
  }

 private:
  /// What `read` makes of the field, which must be there.
  template <class Read>
  auto requiredField(const JsonSpot& object, const std::string& name, const Read& read)
      -> decltype(read(object)) {
    if (const JsonValue* field = findField(object, name)) return read(JsonSpot{*field, &object});
    addMissing(object, name);
    return {};
  }

  /// What `compute` makes of a value; its std::invalid_argument is a fault.
  template <class Compute>
  auto orFault(JsonFault fault, const JsonSpot& spot, const Compute& compute)
      -> std::optional<decltype(compute())> {
    try {
      return compute();
    } catch (const std::invalid_argument& error) {
      faults_.add(fault, spot, error.what());
      return std::nullopt;
    }
  }

  template <class Parse>
  auto parsedText(JsonFault fault, const JsonSpot& spot, const Parse& parse)
      -> std::optional<decltype(parse(spot.value.text))> {
    if (!expect(spot, Kind::Text, "a text")) return std::nullopt;
    return orFault(fault, spot, [&] { return parse(spot.value.text); });
  }

  template <class Parse>
  auto textField(JsonFault fault, const JsonSpot& object, const char* name, const Parse& parse) {
    return requiredField(object, name,
                         [&](const JsonSpot& spot) { return parsedText(fault, spot, parse); });
  }

  std::optional<std::u16string> nameField(const JsonSpot& object) {
    return textField(JsonFault::BadName, object, "name", parseName);
  }

  std::optional<pathfinder::VersionId> versionField(const JsonSpot& object, const char* name) {
    return textField(JsonFault::BadVersion, object, name, parseVersion);
  }

  /// Empty when there is none.
  std::u16string noteField(const JsonSpot& object) {
    const JsonValue* field = findField(object, "note");
    if (field == nullptr || !expect({*field, &object}, Kind::Text, "a text")) return {};
    return toUtf16(field->text);
  }

  std::optional<pathfinder::SemVer> readEquivalent(const JsonSpot& spot, const MetamodelRow& row) {
    if (row.version && row.version->isSemVer()) {
      faults_.add(JsonFault::BadEquivalent, spot, equivalentOfSemVer);
      return std::nullopt;
    }
    return parsedText(JsonFault::BadEquivalent, spot, parseSemVer);
  }

  std::vector<DependencyRow> readDependencies(const JsonSpot& list) {
    std::vector<DependencyRow> rows;
    if (!expect(list, Kind::Array, "an array")) return rows;
    rows.reserve(list.value.children.size());
    for (const JsonValue& element : list.value.children) {
      const auto number = static_cast<std::size_t>(&element - list.value.children.data());
      const JsonSpot spot{element, &list, number};
      if (!expectObject(spot, {"name", "range", "note", "optional"})) continue;
      rows.push_back({.number = number,
                      .order = element.order,
                      .name = nameField(spot),
                      .range = requiredField(
                          spot, "range", [&](const JsonSpot& field) { return readRange(field); }),
                      .note = noteField(spot),
                      .isOptional = isOptional(spot)});
    }
    return rows;
  }

  /// Whether a dependency says so.
  bool isOptional(const JsonSpot& dependency) {
    const JsonValue* field = findField(dependency, "optional");
    return field != nullptr && expect({*field, &dependency}, Kind::Boolean, "true or false") &&
           field->isTrue;
  }

  std::optional<VersionRange> readRange(const JsonSpot& spot) {
    if (spot.value.kind != Kind::Object) return readSimpleRange(spot);
    if (!expectObject(spot, {"anyOf"})) return std::nullopt;
    return requiredField(spot, "anyOf", [&](const JsonSpot& list) { return readUnion(list); });
  }

  std::optional<VersionRange> readUnion(const JsonSpot& list) {
    if (!expect(list, Kind::Array, "an array")) return std::nullopt;
    std::vector<VersionRange> pieces;
    bool isComplete = true;
    for (std::size_t i = 0; i < list.value.children.size(); ++i) {
      auto piece = readSimpleRange({list.value.children[i], &list, i});
      isComplete = isComplete && piece;
      if (piece) pieces.push_back(*std::move(piece));
    }
    if (!isComplete) return std::nullopt;
    return orFault(JsonFault::BadRange, list, [&] { return unionOf(pieces); });
  }

  std::optional<VersionRange> readSimpleRange(const JsonSpot& spot) {
    if (spot.value.kind != Kind::Array) {
      return parsedText(JsonFault::BadRange, spot, [](const std::string& text) {
        return VersionRange::singleVersion(parseVersion(text));
      });
    }
    const auto& bounds = spot.value.children;
    if (bounds.size() != 2) {
      faults_.add(JsonFault::BadRange, spot,
                  "must be a pair [lower, upper) of versions, or one version");
      return std::nullopt;
    }
    const bool lowerIsText = expect({bounds[0], &spot, 0}, Kind::Text, "a text");
    const bool upperIsText = expect({bounds[1], &spot, 1}, Kind::Text, "a text");
    if (!lowerIsText || !upperIsText) return std::nullopt;
    return orFault(JsonFault::BadRange, spot,
                   [&] { return parseRange(bounds[0].text, bounds[1].text); });
  }

  std::optional<SelectionDraft> readSelection(const JsonSpot& spot) {
    if (!expectObject(spot)) return std::nullopt;
    SelectionDraft selection{.place = spot.place()};
    for (const JsonValue& field : spot.value.children) {
      if (auto row = readSelected({field, &spot})) {
        selection.rows.push_back(*std::move(row));
      } else {
        selection.isComplete = false;
      }
    }
    return selection;
  }

  JsonFaults& faults_;
};

/// Finds the rows in a document.
class DocumentReader : public JsonPieceReceiver {
 public:
  DocumentReader(JsonRowReceiver& receiver, JsonFaults& faults)
      : receiver_(receiver), faults_(faults), rows_(faults) {}

  std::string read(std::istream& in) {
    std::string syntaxError = readJsonPieces(in, *this);
    for (const char* name : {"metamodels", "hops"}) {
      if (syntaxError.empty() && !hasOtherRoot_ && !met_.contains(name))
        rows_.addMissing(root_, name);
    }
    return syntaxError;
  }

  void enterField(const JsonValue& field) override {
    field_ = field;
    field_.kind = Kind::Array;
    isRead_ = false;
    if (!met_.insert(field.key).second) {
      addDuplicateField({field, &root_}, faults_);
    } else if (!isCatalogueField(field.key)) {
      rows_.addUnknown({field, &root_});
    } else {
      isRead_ = true;
    }
  }

  void receiveElement(std::size_t index, JsonValue value) override {
    if (!isRead_) return;
    const JsonSpot list{field_, &root_};
    const JsonSpot spot{value, &list, index};
    bool isExpensive = false;
    if (field_.key == "metamodels") {
      if (auto row = rows_.readMetamodel(spot)) receiver_.receiveMetamodel(*std::move(row));
    } else if (field_.key == "hops") {
      if (auto row = rows_.readHop(spot, isExpensive)) {
        receiver_.receiveHop(*std::move(row), isExpensive);
      }
    }
  }

  void receiveField(JsonValue value) override {
    if (!isRead_) return;
    const JsonSpot spot{value, &root_};
    if (value.key != "question") {
      rows_.expect(spot, Kind::Array, "an array");
    } else if (rows_.expectObject(spot, {"from", "to"})) {
      auto from = rows_.readSide(spot, "from");
      receiver_.receiveQuestion(std::move(from), rows_.readSide(spot, "to"));
    }
  }

  void receiveOtherRoot(JsonValue value) override {
    hasOtherRoot_ = true;
    addWrongType({value}, "an object", faults_);
  }

 private:
  JsonRowReceiver& receiver_;
  JsonFaults& faults_;
  RowReader rows_;
  const JsonValue rootValue_{.kind = Kind::Object};
  const JsonSpot root_{rootValue_};
  JsonValue field_;            // of the root, entered last, as if it were an array
  bool isRead_ = false;        // that field
  std::set<std::string> met_;  // fields of the root
  bool hasOtherRoot_ = false;
};

}  // namespace

std::string JsonSpot::pointer() const {
  return pointerTo(*this).to_string();
}

void FirstJsonFault::add(JsonFault fault, const JsonSpot& spot, const std::string& message) {
  const bool isOfObject = fault == JsonFault::UnknownField || fault == JsonFault::DuplicateField;
  throw CatalogueError((isOfObject ? *spot.parent : spot).pointer(), message);
}

std::string readJsonRows(std::istream& in, JsonRowReceiver& receiver, JsonFaults& faults) {
  return DocumentReader(receiver, faults).read(in);
}

bool isCatalogueField(const std::string& name) {
  return name == "metamodels" || name == "hops" || name == "question";
}

std::optional<SelectionRow> readSelectionRow(const JsonSpot& spot, JsonFaults& faults) {
  return RowReader(faults).readSelected(spot);
}

void addWrongType(const JsonSpot& spot, const std::string& wanted, JsonFaults& faults) {
  faults.add(JsonFault::WrongType, spot, spot.value.isNot(wanted));
}

void addDuplicateField(const JsonSpot& spot, JsonFaults& faults) {
  faults.add(JsonFault::DuplicateField, spot, "the field \"" + spot.value.key + "\" stands twice");
}

}  // namespace tarn::evolution::catalogue
