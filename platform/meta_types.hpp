#pragma once

#include <string>

#include "platform/meta_handle.hpp"
#include "platform/visibility.hpp"

/// The meta types that the framework registers for a metamodel, seen through handles.
///
/// Each kind has an implementation class, reached through its handle as `Type::Impl` and so on. A
/// host derives from the implementation classes; the path finder only calls them.
namespace tarn::meta {

/// What every element of a metamodel has: a qualified name.
class TARN_PLATFORM_API NamedElementImpl : public RefCounted {
 public:
  virtual std::u16string getQualifiedName() const = 0;

 protected:
  ~NamedElementImpl() override;
};

/// Any element of a metamodel.
class NamedElement : public Handle<NamedElementImpl> {
 public:
  using Handle::Handle;
};

class TARN_PLATFORM_API PackageImpl : public NamedElementImpl {
 public:
  /// The package's URI; `MetaRegistry::parseUri` splits it.
  virtual const std::u16string& getUri() const = 0;

 protected:
  ~PackageImpl() override;
};

/// A package of meta types.
class Package : public Handle<PackageImpl> {
 public:
  using Handle::Handle;
};

class Type;

class TARN_PLATFORM_API TypeImpl : public NamedElementImpl {
 public:
  /// The owning package, or null when the type has none. Owned by the type; a cheap test.
  virtual PackageImpl* getOwningPackageImpl() const = 0;

  /// A handle of the owning package; empty when there is none.
  Package getOwningPackage() const { return Package(getOwningPackageImpl()); }

  /// Whether this type is `base` or derives from it, directly or through others.
  virtual bool isSubclassOf(const Type& base) const = 0;

 protected:
  ~TypeImpl() override;
};

/// Any meta type: a class, a primitive type or another kind that the framework knows.
class Type : public Handle<TypeImpl> {
 public:
  using Handle::Handle;
};

/// Implementation of classes. A type is a class exactly when its implementation derives from this.
class TARN_PLATFORM_API ClassImpl : public TypeImpl {
 protected:
  ~ClassImpl() override;
};

/// A type that is a class.
class Class : public Type {
 public:
  using Impl = ClassImpl;

  Class() noexcept = default;
  explicit Class(ClassImpl* impl) noexcept : Type(impl) {}
};

class TARN_PLATFORM_API PrimitiveTypeImpl : public TypeImpl {
 protected:
  ~PrimitiveTypeImpl() override;
};

/// A type that is a primitive type.
class PrimitiveType : public Type {
 public:
  using Impl = PrimitiveTypeImpl;

  PrimitiveType() noexcept = default;
  explicit PrimitiveType(PrimitiveTypeImpl* impl) noexcept : Type(impl) {}
};

}  // namespace tarn::meta
