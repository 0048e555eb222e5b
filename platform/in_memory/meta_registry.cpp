#include "platform/meta_registry.hpp"

#include "platform/in_memory/type_store.hpp"

namespace tarn::meta {

MetaRegistry& MetaRegistry::getInstance() {
  static MetaRegistry registry;
  return registry;
}

Type MetaRegistry::getType(const std::u16string& qualifiedName) const {
  return in_memory::TypeStore::instance().findOrLoad(qualifiedName);
}

Type MetaRegistry::getTypeNoLoad(const std::u16string& qualifiedName) const {
  return in_memory::TypeStore::instance().find(qualifiedName);
}

std::pair<std::u16string, std::u16string> MetaRegistry::parseUri(const std::u16string& uri) {
  const std::size_t slash = uri.rfind(u'/');
  if (slash == std::u16string::npos) return {uri, {}};
  return {uri.substr(0, slash), uri.substr(slash + 1)};
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

PrimitiveType internal::getPrimitiveTypeFromMetaRegistry(const char16_t* name) {
  const Type type = in_memory::TypeStore::instance().find(std::u16string(u"tarn.meta.") + name);
  return PrimitiveType(dynamic_cast<PrimitiveTypeImpl*>(type.impl()));
}

}  // namespace tarn::meta
