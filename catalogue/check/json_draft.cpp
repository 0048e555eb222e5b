#include "catalogue/check/json_draft.hpp"

#include <algorithm>
#include <istream>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <utility>

#include "catalogue/json_file.hpp"
#include "catalogue/json_pieces.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionRange;
using Kind = JsonValue::Kind;

namespace {

/// Where a value stands, spelled out only when something is found there.
struct Spot {
  const JsonValue& value;
  const Spot* parent = nullptr;  // null for the root's fields
  std::size_t index = 0;         // among the elements of the parent
  const char* list = nullptr;    // of an element: the root's field that holds it

  nlohmann::json::json_pointer pointer() const {
    nlohmann::json::json_pointer before;
    if (list != nullptr) return before / list / index;
    if (parent != nullptr) before = parent->pointer();
    const bool isElement = parent != nullptr && parent->value.kind == Kind::Array;
    return isElement ? before / index : before / value.key;
  }
};

class DraftReader : public JsonPieceReceiver {
 public:
  void receiveElement(const std::string& field, std::size_t index, JsonValue value) override {
    if (rootFields_.contains(field)) return;
    if (field == "metamodels") readMetamodel({value, nullptr, index, "metamodels"});
    if (field == "hops") readHop({value, nullptr, index, "hops"});
  }

  void receiveField(JsonValue value) override {
    const Spot spot{value};
    const bool isKnown =
        value.key == "metamodels" || value.key == "hops" || value.key == "question";
    if (!rootFields_.insert(value.key).second) {
      findDuplicate(spot);
    } else if (!isKnown) {
      findUnknown(spot);
    } else if (value.key == "question") {
      readQuestion(spot);
    } else {
      expect(spot, Kind::Array, "an array");
    }
  }

  void receiveOtherRoot(JsonValue value) override {
    hasOtherRoot_ = true;
    find(FindingCode::WrongType, Place{}, value.isNot("an object"));
  }

  CatalogueDraft finish(const std::string& syntaxError) {
    if (!syntaxError.empty()) {
      CatalogueDraft unreadable;
      unreadable.isReadable = false;
      unreadable.findings.emplace_back().code = FindingCode::NotJson;
      unreadable.findings.back().message = "not JSON: " + syntaxError;
      return unreadable;
    }
    for (const char* name : {"metamodels", "hops"}) {
      if (!hasOtherRoot_ && !rootFields_.contains(name)) findMissing(Place{}, name);
    }
    return std::move(draft_);
  }

 private:
  void find(FindingCode code, Place place, const std::string& message) {
    draft_.findings.push_back({code, std::move(place), message, {}});
  }
  void find(FindingCode code, const Spot& spot, const std::string& message) {
    find(code, placeOf(spot), message);
  }
  void findMissing(Place place, const std::string& name) {
    find(FindingCode::MissingField, std::move(place), "the field \"" + name + "\" is missing");
  }
  void findUnknown(const Spot& spot) {
    find(FindingCode::UnknownField, spot, "there is no field \"" + spot.value.key + "\" here");
  }
  void findDuplicate(const Spot& spot) {
    find(FindingCode::DuplicateField, spot, "the field \"" + spot.value.key + "\" stands twice");
  }

  static Place placeOf(const Spot& spot) { return {spot.pointer().to_string(), spot.value.order}; }

  bool expect(const Spot& spot, Kind kind, const std::string& wanted) {
    if (spot.value.kind == kind) return true;
    find(FindingCode::WrongType, spot, spot.value.isNot(wanted));
    return false;
  }

  /// Finds what is wrong with the fields of an object; `known` says which it may have. Returns
  /// whether it is an object.
  template <class IsKnown>
  bool checkFields(const Spot& object, const IsKnown& isKnown) {
    if (!expect(object, Kind::Object, "an object")) return false;
    std::set<std::string> met;
    for (const JsonValue& field : object.value.children) {
      const Spot spot{field, &object};
      if (!met.insert(field.key).second) {
        findDuplicate(spot);
      } else if (!isKnown(field.key)) {
        findUnknown(spot);
      }
    }
    return true;
  }

  bool checkFields(const Spot& object, std::initializer_list<const char*> names) {
    return checkFields(object, [&](const std::string& key) {
      return std::find(names.begin(), names.end(), key) != names.end();
    });
  }

  static const JsonValue* optionalField(const Spot& object, const std::string& name) {
    for (const JsonValue& field : object.value.children) {
      if (field.key == name) return &field;
    }
    return nullptr;
  }

  /// What `read` makes of the field, which must be there.
  template <class Read>
  auto requiredField(const Spot& object, const std::string& name, const Read& read)
      -> decltype(read(object)) {
    if (const JsonValue* field = optionalField(object, name)) return read(Spot{*field, &object});
    findMissing(placeOf(object), name);
    return {};
  }

  /// What `compute` makes of a value; a std::invalid_argument becomes a finding.
  template <class Compute>
  auto orFind(FindingCode code, const Spot& spot, const Compute& compute)
      -> std::optional<decltype(compute())> {
    try {
      return compute();
    } catch (const std::invalid_argument& error) {
      find(code, spot, error.what());
      return std::nullopt;
    }
  }

  /// What `parse` makes of a text.
  template <class Parse>
  auto parsedText(FindingCode code, const Spot& spot, const Parse& parse)
      -> std::optional<decltype(parse(spot.value.text))> {
    if (!expect(spot, Kind::Text, "a text")) return std::nullopt;
    return orFind(code, spot, [&] { return parse(spot.value.text); });
  }

  std::optional<std::u16string> nameField(const Spot& object) {
    return requiredField(object, "name", [&](const Spot& spot) {
      return parsedText(FindingCode::BadName, spot, parseName);
    });
  }

  std::optional<pathfinder::VersionId> versionField(const Spot& object, const std::string& name) {
    return requiredField(object, name, [&](const Spot& spot) {
      return parsedText(FindingCode::BadVersion, spot, parseVersion);
    });
  }

  void readMetamodel(const Spot& spot) {
    if (!checkFields(spot, {"name", "version", "dependencies", "semver"})) return;
    MetamodelRow row{spot.index,      spot.value.order,
                     nameField(spot), versionField(spot, "version"),
                     std::nullopt,    {}};
    if (const JsonValue* field = optionalField(spot, "semver")) {
      row.equivalent = readEquivalent({*field, &spot}, row);
    }
    row.dependencies = requiredField(spot, "dependencies",
                                     [&](const Spot& field) { return readDependencies(field); });
    draft_.metamodels.push_back(std::move(row));
  }

  std::optional<pathfinder::SemVer> readEquivalent(const Spot& spot, const MetamodelRow& row) {
    if (row.version && row.version->isSemVer()) {
      find(FindingCode::BadEquivalent, spot, "only a text version has a semantic equivalent");
      return std::nullopt;
    }
    return parsedText(FindingCode::BadEquivalent, spot, parseSemVer);
  }

  std::vector<DependencyRow> readDependencies(const Spot& list) {
    std::vector<DependencyRow> rows;
    if (!expect(list, Kind::Array, "an array")) return rows;
    rows.reserve(list.value.children.size());
    for (std::size_t i = 0; i < list.value.children.size(); ++i) {
      const Spot spot{list.value.children[i], &list, i};
      if (!checkFields(spot, {"name", "range"})) continue;
      rows.push_back(
          {i, spot.value.order, nameField(spot),
           requiredField(spot, "range", [&](const Spot& field) { return readRange(field); })});
    }
    return rows;
  }

  std::optional<VersionRange> readRange(const Spot& spot) {
    if (spot.value.kind != Kind::Object) return readSimpleRange(spot);
    if (!checkFields(spot, {"anyOf"})) return std::nullopt;
    return requiredField(spot, "anyOf", [&](const Spot& list) { return readUnion(list); });
  }

  std::optional<VersionRange> readUnion(const Spot& list) {
    if (!expect(list, Kind::Array, "an array")) return std::nullopt;
    std::vector<VersionRange> pieces;
    for (std::size_t i = 0; i < list.value.children.size(); ++i) {
      const auto piece = readSimpleRange({list.value.children[i], &list, i});
      if (!piece) return std::nullopt;
      pieces.push_back(*piece);
    }
    return orFind(FindingCode::BadRange, list, [&] { return unionOf(pieces); });
  }

  std::optional<VersionRange> readSimpleRange(const Spot& spot) {
    if (spot.value.kind != Kind::Array) {
      return parsedText(FindingCode::BadRange, spot, [](const std::string& text) {
        return VersionRange::singleVersion(parseVersion(text));
      });
    }
    const auto& bounds = spot.value.children;
    if (bounds.size() != 2) {
      find(FindingCode::BadRange, spot,
           "must be a pair [lower, upper) of versions, or one version");
      return std::nullopt;
    }
    const bool lowerIsText = expect({bounds[0], &spot, 0}, Kind::Text, "a text");
    const bool upperIsText = expect({bounds[1], &spot, 1}, Kind::Text, "a text");
    if (!lowerIsText || !upperIsText) return std::nullopt;
    return orFind(FindingCode::BadRange, spot,
                  [&] { return parseRange(bounds[0].text, bounds[1].text); });
  }

  void readHop(const Spot& spot) {
    if (!checkFields(spot, {"name", "from", "to", "expensive"})) return;
    draft_.hops.push_back({spot.index, spot.value.order, nameField(spot),
                           versionField(spot, "from"), versionField(spot, "to")});
    requiredField(spot, "expensive",
                  [&](const Spot& field) { return expect(field, Kind::Boolean, "true or false"); });
  }

  void readQuestion(const Spot& spot) {
    if (!checkFields(spot, {"from", "to"})) return;
    const auto read = [&](const Spot& field) { return readSelection(field); };
    draft_.questionFrom = requiredField(spot, "from", read);
    draft_.questionTo = requiredField(spot, "to", read);
  }

  std::optional<SelectionDraft> readSelection(const Spot& spot) {
    if (!checkFields(spot, [](const std::string& /*name*/) { return true; })) return std::nullopt;
    SelectionDraft selection{placeOf(spot), {}, true};
    for (const JsonValue& field : spot.value.children) {
      const Spot row{field, &spot};
      const auto name = orFind(FindingCode::BadName, row, [&] { return parseName(field.key); });
      const auto version = parsedText(FindingCode::BadVersion, row, parseVersion);
      if (name && version) {
        selection.rows.push_back({placeOf(row), *name, *version});
      } else {
        selection.isComplete = false;
      }
    }
    return selection;
  }

  CatalogueDraft draft_;
  std::set<std::string> rootFields_;  // met so far, to their ends
  bool hasOtherRoot_ = false;
};

}  // namespace

CatalogueDraft readJsonDraft(std::istream& in) {
  DraftReader reader;
  return reader.finish(readJsonPieces(in, reader));
}

CatalogueDraft readJsonDraft(const std::filesystem::path& file) {
  return readJsonFile(file, [](std::istream& in) { return readJsonDraft(in); });
}

}  // namespace tarn::evolution::catalogue
