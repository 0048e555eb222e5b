#include "platform/in_memory/type_store.hpp"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace tarn::meta::in_memory {

namespace {

class StoredPackage final : public PackageImpl {
 public:
  StoredPackage(std::u16string qualifiedName, std::u16string uri)
      : qualifiedName_(std::move(qualifiedName)), uri_(std::move(uri)) {}

  std::u16string getQualifiedName() const override { return qualifiedName_; }
  const std::u16string& getUri() const override { return uri_; }

 private:
  std::u16string qualifiedName_;
  std::u16string uri_;
};

/// What classes and primitive types have in common.
template <class Base>
class StoredType : public Base {
 public:
  StoredType(std::u16string qualifiedName, Package owner)
      : qualifiedName_(std::move(qualifiedName)), owner_(std::move(owner)) {}

  std::u16string getQualifiedName() const override { return qualifiedName_; }
  PackageImpl* getOwningPackageImpl() const override { return owner_.impl(); }
  bool isSubclassOf(const Type& base) const override { return base.impl() == this; }

 private:
  std::u16string qualifiedName_;
  Package owner_;
};

class StoredClass final : public StoredType<ClassImpl> {
 public:
  StoredClass(std::u16string qualifiedName, Package owner, std::vector<Class> bases)
      : StoredType(std::move(qualifiedName), std::move(owner)), bases_(std::move(bases)) {}

  bool isSubclassOf(const Type& base) const override {
    return StoredType::isSubclassOf(base) ||
           std::any_of(bases_.begin(), bases_.end(),
                       [&](const Class& parent) { return parent->isSubclassOf(base); });
  }

 private:
  std::vector<Class> bases_;
};

using StoredPrimitiveType = StoredType<PrimitiveTypeImpl>;

constexpr const char16_t* standardPrimitiveNames[] = {
    u"String",   u"Integer",          u"Integer8",  u"Integer16",  u"Integer64",         u"Real",
    u"Boolean",  u"UnlimitedNatural", u"UInteger8", u"UInteger16", u"UInteger64",        u"UUID",
    u"DateTime", u"StdString",        u"QvArray",   u"JsonValue",  u"StringToStringMap",
};

}  // namespace

struct TypeStore::Content {
  Content() {
    const std::u16string prefix = u"tarn.meta.";
    for (const char16_t* name : standardPrimitiveNames) {
      addStandard(Type(new StoredPrimitiveType(prefix + name, metaPackage)));
    }
    for (const char16_t* name : {u"Model", u"ModelElement"}) {
      addStandard(Class(new StoredClass(prefix + name, metaPackage, {})));
    }
  }

  void addStandard(const Type& type) { standardTypes.emplace(type->getQualifiedName(), type); }

  const Package metaPackage{new StoredPackage(u"tarn.meta", u"tarn/meta")};
  std::unordered_map<std::u16string, Type> standardTypes;

  mutable std::mutex mutex;  // guards what follows
  std::unordered_map<std::u16string, Type> types;
  std::unordered_map<std::u16string, std::function<void(TypeStore&)>> loadables;
};

TypeStore& TypeStore::instance() {
  static TypeStore store;
  return store;
}

TypeStore::TypeStore() : content_(std::make_unique<Content>()) {
  reset();
}

TypeStore::~TypeStore() = default;

Package TypeStore::metaPackage() const {
  return content_->metaPackage;
}

Package TypeStore::makePackage(const std::u16string& qualifiedName, const std::u16string& uri) {
  return Package(new StoredPackage(qualifiedName, uri));
}

Class TypeStore::addClass(const std::u16string& qualifiedName, const Package& owner,
                          const std::vector<Class>& bases) {
  Class added(new StoredClass(qualifiedName, owner, bases));
  const std::lock_guard lock(content_->mutex);
  content_->types[qualifiedName] = added;
  return added;
}

PrimitiveType TypeStore::addPrimitiveType(const std::u16string& qualifiedName,
                                          const Package& owner) {
  PrimitiveType added(new StoredPrimitiveType(qualifiedName, owner));
  const std::lock_guard lock(content_->mutex);
  content_->types[qualifiedName] = added;
  return added;
}

void TypeStore::addLoadable(const std::u16string& qualifiedName,
                            std::function<void(TypeStore&)> load) {
  const std::lock_guard lock(content_->mutex);
  content_->loadables[qualifiedName] = std::move(load);
}

void TypeStore::reset() {
  const std::lock_guard lock(content_->mutex);
  content_->types = content_->standardTypes;
  content_->loadables.clear();
}

Type TypeStore::find(const std::u16string& qualifiedName) const {
  const std::lock_guard lock(content_->mutex);
  const auto found = content_->types.find(qualifiedName);
  return found == content_->types.end() ? Type() : found->second;
}

Type TypeStore::findOrLoad(const std::u16string& qualifiedName) {
  if (Type known = find(qualifiedName)) return known;
  std::function<void(TypeStore&)> load;
  {
    const std::lock_guard lock(content_->mutex);
    const auto loadable = content_->loadables.find(qualifiedName);
    if (loadable == content_->loadables.end()) return {};
    load = loadable->second;
  }
  load(*this);
  return find(qualifiedName);
}

}  // namespace tarn::meta::in_memory
