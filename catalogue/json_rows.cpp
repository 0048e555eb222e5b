#include "catalogue/json_rows.hpp"

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue {

using Kind = JsonValue::Kind;

namespace {

/// A value of the document together with its place in it.
class Value {
 public:
  Value(const JsonValue& node, std::string place) : node_(node), place_(std::move(place)) {}

  [[noreturn]] void fail(const std::string& reason) const { throw CatalogueError(place_, reason); }

  /// A field that must be there.
  Value field(const std::string& name) const {
    if (auto found = optionalField(name)) return *std::move(found);
    fail("the field \"" + name + "\" is missing");
  }

  std::optional<Value> optionalField(const std::string& name) const {
    for (const JsonValue& child : node_.children) {
      if (child.key == name) return Value(child, place_ + "/" + name);
    }
    return std::nullopt;
  }

  /// Checks that this is an object without fields of other names, and with none that stands twice.
  void expectFields(std::initializer_list<const char*> names) const {
    expectUnique();
    const std::set<std::string> known(names.begin(), names.end());
    for (const JsonValue& child : node_.children) {
      if (!known.contains(child.key)) fail("there is no field \"" + child.key + "\" here");
    }
  }

  bool isArray() const { return node_.kind == Kind::Array; }
  bool isObject() const { return node_.kind == Kind::Object; }

  bool asBool() const {
    expect(Kind::Boolean, "true or false");
    return node_.isTrue;
  }

  const std::string& asText() const {
    expect(Kind::Text, "a text");
    return node_.text;
  }

  /// What `parse` makes of the text; its std::invalid_argument becomes an error with a place.
  template <class Parse>
  auto parsedBy(const Parse& parse) const {
    return orFail([&] { return parse(asText()); });
  }

  /// The result of `compute`; its std::invalid_argument becomes an error with a place.
  template <class Compute>
  auto orFail(const Compute& compute) const {
    try {
      return compute();
    } catch (const std::invalid_argument& error) {
      fail(error.what());
    }
  }

  std::vector<Value> elements() const {
    expect(Kind::Array, "an array");
    std::vector<Value> result;
    result.reserve(node_.children.size());
    for (const JsonValue& child : node_.children) {
      result.emplace_back(child, place_ + "/" + std::to_string(result.size()));
    }
    return result;
  }

  /// The entries of an object that maps names to values, with the names as they stand.
  std::vector<std::pair<std::string, Value>> entries() const {
    expectUnique();
    std::vector<std::pair<std::string, Value>> result;
    for (const JsonValue& child : node_.children) {
      const json_pointer place = json_pointer(place_) / child.key;
      result.emplace_back(child.key, Value(child, place.to_string()));
    }
    return result;
  }

 private:
  using json_pointer = nlohmann::json::json_pointer;

  void expect(Kind kind, const std::string& wanted) const {
    if (node_.kind != kind) fail(node_.isNot(wanted));
  }

  void expectUnique() const {
    expect(Kind::Object, "an object");
    std::set<std::string> met;
    for (const JsonValue& child : node_.children) {
      if (!met.insert(child.key).second) fail("the field \"" + child.key + "\" stands twice");
    }
  }

  const JsonValue& node_;
  std::string place_;
};

pathfinder::VersionRange readSimpleRange(const Value& value) {
  if (!value.isArray())
    return pathfinder::VersionRange::singleVersion(value.parsedBy(parseVersion));
  const std::vector<Value> bounds = value.elements();
  if (bounds.size() != 2) value.fail("must be a pair [lower, upper) of versions, or one version");
  const std::string& lower = bounds[0].asText();
  const std::string& upper = bounds[1].asText();
  return value.orFail([&] { return parseRange(lower, upper); });
}

pathfinder::VersionRange readRange(const Value& value) {
  if (!value.isObject()) return readSimpleRange(value);
  value.expectFields({"anyOf"});
  const Value list = value.field("anyOf");
  std::vector<pathfinder::VersionRange> pieces;
  for (const Value& piece : list.elements()) pieces.push_back(readSimpleRange(piece));
  return list.orFail([&] { return unionOf(pieces); });
}

pathfinder::Dependency readDependency(const Value& value) {
  value.expectFields({"name", "range"});
  return {value.field("name").parsedBy(parseName), readRange(value.field("range"))};
}

CatalogueMetamodel readMetamodel(const Value& value) {
  value.expectFields({"name", "version", "dependencies", "semver"});
  std::vector<pathfinder::Dependency> dependencies;
  for (const Value& dependency : value.field("dependencies").elements()) {
    dependencies.push_back(readDependency(dependency));
  }
  CatalogueMetamodel result{
      pathfinder::Metamodel(value.field("name").parsedBy(parseName),
                            value.field("version").parsedBy(parseVersion), dependencies),
      std::nullopt};
  if (const auto equivalent = value.optionalField("semver")) {
    if (result.descriptor.version.isSemVer()) {
      equivalent->fail("only a text version has a semantic equivalent");
    }
    result.equivalent = equivalent->parsedBy(parseSemVer);
  }
  return result;
}

pathfinder::Hop readHop(const Value& value) {
  value.expectFields({"name", "from", "to", "expensive"});
  return {value.field("name").parsedBy(parseName), value.field("from").parsedBy(parseVersion),
          value.field("to").parsedBy(parseVersion), value.field("expensive").asBool()};
}

Selection readSelection(const Value& value) {
  Selection selection;
  for (const auto& [name, version] : value.entries()) {
    selection.emplace(version.orFail([&name = name] { return parseName(name); }),
                      version.parsedBy(parseVersion));
  }
  return selection;
}

Question readQuestion(const Value& value) {
  value.expectFields({"from", "to"});
  return {readSelection(value.field("from")), readSelection(value.field("to"))};
}

}  // namespace

CatalogueMetamodel readMetamodelRow(const JsonValue& value, const std::string& place) {
  return readMetamodel(Value(value, place));
}

pathfinder::Hop readHopRow(const JsonValue& value, const std::string& place) {
  return readHop(Value(value, place));
}

Question readQuestionRow(const JsonValue& value, const std::string& place) {
  return readQuestion(Value(value, place));
}

}  // namespace tarn::evolution::catalogue
