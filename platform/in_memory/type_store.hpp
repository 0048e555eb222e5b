#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/meta_types.hpp"
#include "platform/visibility.hpp"

namespace tarn::meta::in_memory {

/// The packages and types behind `MetaRegistry` in the development platform.
///
/// There is one store per process. It begins with the framework's own package (qualified name
/// "tarn.meta", URI "tarn/meta"), which holds the seventeen standard primitive types
/// ("tarn.meta.String" and so on) and the classes "tarn.meta.Model" and "tarn.meta.ModelElement".
/// Programs add what their metamodels define. All operations may be called from any thread.
class TARN_PLATFORM_API TypeStore {
 public:
  static TypeStore& instance();

  TypeStore(const TypeStore&) = delete;
  TypeStore& operator=(const TypeStore&) = delete;

  /// The framework's own package.
  Package metaPackage() const;

  /// A new package, for types to be owned by.
  Package makePackage(const std::u16string& qualifiedName, const std::u16string& uri);

  /// Adds a class and makes it known under its name, in place of a type of that name added before.
  Class addClass(const std::u16string& qualifiedName, const Package& owner = {},
                 const std::vector<Class>& bases = {});

  /// Adds a primitive type and makes it known under its name, in place of one added before.
  PrimitiveType addPrimitiveType(const std::u16string& qualifiedName, const Package& owner = {});

  /// Runs `load` whenever `MetaRegistry::getType` is asked for `qualifiedName` while no type of
  /// that name is known; `load` is expected to add it. It runs without any lock held, on two
  /// threads at once if both ask.
  void addLoadable(const std::u16string& qualifiedName, std::function<void(TypeStore&)> load);

  /// Forgets everything but the standard content, which is the same as ever. Handles held elsewhere
  /// stay valid.
  void reset();

  /// The type known under `qualifiedName`; empty when there is none.
  Type find(const std::u16string& qualifiedName) const;

  /// The same, after loading if need be.
  Type findOrLoad(const std::u16string& qualifiedName);

 private:
  TypeStore();
  ~TypeStore();

  struct Content;
  std::unique_ptr<Content> content_;
};

}  // namespace tarn::meta::in_memory
