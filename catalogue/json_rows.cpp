#include "catalogue/json_rows.hpp"

#include <initializer_list>
#include <set>
#include <stdexcept>
#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue {

using nlohmann::json;

namespace {

std::string kindOf(const json& value) {
  switch (value.type()) {
    case json::value_t::null:
      return "null";
    case json::value_t::object:
      return "an object";
    case json::value_t::array:
      return "an array";
    case json::value_t::string:
      return "a text";
    case json::value_t::boolean:
      return "true or false";
    default:
      return "a number";
  }
}

/// A value of the document together with its place in it.
class Value {
 public:
  Value(const json& node, std::string place) : node_(node), place_(std::move(place)) {}

  [[noreturn]] void fail(const std::string& reason) const { throw CatalogueError(place_, reason); }

  /// A field that must be there.
  Value field(const std::string& name) const {
    if (auto found = optionalField(name)) return *std::move(found);
    fail("the field \"" + name + "\" is missing");
  }

  std::optional<Value> optionalField(const std::string& name) const {
    const auto found = node_.find(name);
    if (found == node_.end()) return std::nullopt;
    return Value(*found, place_ + "/" + name);
  }

  /// Checks that this is an object without fields of other names.
  void expectFields(std::initializer_list<const char*> names) const {
    expect(node_.is_object(), "an object");
    const std::set<std::string> known(names.begin(), names.end());
    for (const auto& [name, value] : node_.items()) {
      if (!known.contains(name)) fail("there is no field \"" + name + "\" here");
    }
  }

  bool isArray() const { return node_.is_array(); }

  bool asBool() const {
    expect(node_.is_boolean(), "true or false");
    return node_.get<bool>();
  }

  const std::string& asText() const {
    expect(node_.is_string(), "a text");
    return node_.get_ref<const std::string&>();
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
    expect(node_.is_array(), "an array");
    std::vector<Value> result;
    result.reserve(node_.size());
    for (std::size_t i = 0; i < node_.size(); ++i) {
      result.emplace_back(node_[i], place_ + "/" + std::to_string(i));
    }
    return result;
  }

  /// The entries of an object that maps names to values, with the names as they stand.
  std::vector<std::pair<std::string, Value>> entries() const {
    expect(node_.is_object(), "an object");
    std::vector<std::pair<std::string, Value>> result;
    for (const auto& [name, value] : node_.items()) {
      result.emplace_back(name, Value(value, (json::json_pointer(place_) / name).to_string()));
    }
    return result;
  }

 private:
  void expect(bool holds, const std::string& wanted) const {
    if (!holds) fail(wrongKind(node_, wanted));
  }

  const json& node_;
  std::string place_;
};

pathfinder::VersionRange readRange(const Value& value) {
  if (!value.isArray())
    return pathfinder::VersionRange::singleVersion(value.parsedBy(parseVersion));
  const std::vector<Value> bounds = value.elements();
  if (bounds.size() != 2) value.fail("must be a pair [lower, upper) of versions, or one version");
  const std::string& lower = bounds[0].asText();
  const std::string& upper = bounds[1].asText();
  return value.orFail([&] { return parseRange(lower, upper); });
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

CatalogueMetamodel readMetamodelRow(const json& value, const std::string& place) {
  return readMetamodel(Value(value, place));
}

pathfinder::Hop readHopRow(const json& value, const std::string& place) {
  return readHop(Value(value, place));
}

Question readQuestionRow(const json& value, const std::string& place) {
  return readQuestion(Value(value, place));
}

std::string wrongKind(const json& value, const std::string& wanted) {
  return "must be " + wanted + ", not " + kindOf(value);
}

}  // namespace tarn::evolution::catalogue
