#include "platform/meta_registry.hpp"
#include "platform/model.hpp"

// This host has not registered any type.
namespace tarn::meta {

NamedElementImpl::~NamedElementImpl() = default;
PackageImpl::~PackageImpl() = default;
TypeImpl::~TypeImpl() = default;
ClassImpl::~ClassImpl() = default;
PrimitiveTypeImpl::~PrimitiveTypeImpl() = default;

MetaRegistry& MetaRegistry::getInstance() {
  static MetaRegistry registry;
  return registry;
}

Type MetaRegistry::getType(const std::u16string&) const {
  return {};
}

Type MetaRegistry::getTypeNoLoad(const std::u16string&) const {
  return {};
}

std::pair<std::u16string, std::u16string> MetaRegistry::parseUri(const std::u16string& uri) {
  return {uri, {}};
}

PrimitiveType StandardTypes::stringMeta;
PrimitiveType StandardTypes::integerMeta;
PrimitiveType StandardTypes::integer8Meta;
PrimitiveType StandardTypes::integer16Meta;
PrimitiveType StandardTypes::integer64Meta;
PrimitiveType StandardTypes::realMeta;
PrimitiveType StandardTypes::booleanMeta;
PrimitiveType StandardTypes::unlimitedNaturalMeta;
PrimitiveType StandardTypes::uinteger8Meta;
PrimitiveType StandardTypes::uinteger16Meta;
PrimitiveType StandardTypes::uinteger64Meta;
PrimitiveType StandardTypes::uuidMeta;
PrimitiveType StandardTypes::dateTimeMeta;
PrimitiveType StandardTypes::stdstringMeta;
PrimitiveType StandardTypes::qvArrayMeta;
PrimitiveType StandardTypes::jsonValueMeta;
PrimitiveType StandardTypes::stringToStringMapMeta;

PrimitiveType internal::getPrimitiveTypeFromMetaRegistry(const char16_t*) {
  return {};
}

}  // namespace tarn::meta

namespace tarn {

const meta::Type& Model::metaClass() {
  static const meta::Type none;
  return none;
}

const meta::Type& ModelElement::metaClass() {
  static const meta::Type none;
  return none;
}

}  // namespace tarn
