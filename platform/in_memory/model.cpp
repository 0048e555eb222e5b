#include "platform/model.hpp"

#include "platform/in_memory/type_store.hpp"

namespace tarn {

const meta::Type& Model::metaClass() {
  static const meta::Type type = meta::in_memory::TypeStore::instance().find(u"tarn.meta.Model");
  return type;
}

const meta::Type& ModelElement::metaClass() {
  static const meta::Type type =
      meta::in_memory::TypeStore::instance().find(u"tarn.meta.ModelElement");
  return type;
}

}  // namespace tarn
