// `VersionBaseline::lookupStandardType`.

#include <algorithm>
#include <iterator>
#include <utility>

#include "pathfinder/version_baseline.hpp"
#include "platform/meta_registry.hpp"
#include "platform/model.hpp"

namespace tarn::evolution::pathfinder {

namespace {

using tarn::meta::MetaRegistry;
using tarn::meta::StandardTypes;
using tarn::meta::Type;

struct StandardPrimitive {
  tarn::meta::PrimitiveType* handle;
  const char16_t* registryName;
};

constexpr StandardPrimitive standardPrimitives[] = {
    {&StandardTypes::stringMeta, u"String"},
    {&StandardTypes::integerMeta, u"Integer"},
    {&StandardTypes::integer8Meta, u"Integer8"},
    {&StandardTypes::integer16Meta, u"Integer16"},
    {&StandardTypes::integer64Meta, u"Integer64"},
    {&StandardTypes::realMeta, u"Real"},
    {&StandardTypes::booleanMeta, u"Boolean"},
    {&StandardTypes::unlimitedNaturalMeta, u"UnlimitedNatural"},
    {&StandardTypes::uinteger8Meta, u"UInteger8"},
    {&StandardTypes::uinteger16Meta, u"UInteger16"},
    {&StandardTypes::uinteger64Meta, u"UInteger64"},
    {&StandardTypes::uuidMeta, u"UUID"},
    {&StandardTypes::dateTimeMeta, u"DateTime"},
    {&StandardTypes::stdstringMeta, u"StdString"},
    {&StandardTypes::qvArrayMeta, u"QvArray"},
    {&StandardTypes::jsonValueMeta, u"JsonValue"},
    {&StandardTypes::stringToStringMapMeta, u"StringToStringMap"},
};

/// Whether the primitive goes by that name. Fills its handle if it is empty; where the registry
/// lacks the primitive, no name matches, and the handle, which other threads read, is not touched.
bool isNamed(const StandardPrimitive& primitive, const std::u16string& qualifiedName) {
  tarn::meta::PrimitiveType& handle = *primitive.handle;
  if (!handle) {
    auto found = tarn::meta::internal::getPrimitiveTypeFromMetaRegistry(primitive.registryName);
    if (!found) return false;
    handle = std::move(found);
  }
  return handle->getQualifiedName() == qualifiedName;
}

bool isStandardPrimitive(const std::u16string& qualifiedName) {
  return std::any_of(
      std::begin(standardPrimitives), std::end(standardPrimitives),
      [&](const StandardPrimitive& primitive) { return isNamed(primitive, qualifiedName); });
}

bool isInMetaPackage(const Type& type) {
  if (type->getOwningPackageImpl() == nullptr) return false;
  return MetaRegistry::parseUri(type->getOwningPackage()->getUri()).second == u"meta";
}

/// A type of the framework's own meta package that is known without loading anything.
Type findFrameworkType(const std::u16string& qualifiedName) {
  Type type = MetaRegistry::getInstance().getTypeNoLoad(qualifiedName);
  return type && isInMetaPackage(type) ? type : Type();
}

}  // namespace

Type VersionBaseline::lookupStandardType(const std::u16string& qualifiedName) {
  if (isStandardPrimitive(qualifiedName)) return MetaRegistry::getInstance().getType(qualifiedName);
  if (qualifiedName == u"tarn.Model" || qualifiedName == u"tarn.meta.Model") {
    return tarn::Model::metaClass();
  }
  if (qualifiedName == u"tarn.ModelElement" || qualifiedName == u"tarn.meta.ModelElement") {
    return tarn::ModelElement::metaClass();
  }
  // Any name that merely begins so is the framework's: "tarnish.Type" too.
  return qualifiedName.starts_with(u"tarn") ? findFrameworkType(qualifiedName) : Type();
}

}  // namespace tarn::evolution::pathfinder
