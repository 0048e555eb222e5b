#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "pathfinder/metamodel.hpp"
#include "platform/meta_types.hpp"
#include "tarn_evolution_pathfinder_export.hpp"

namespace tarn::evolution::pathfinder {

/// One version of one metamodel, bound to the meta types registered for it and linked to exactly
/// one linked metamodel for each metamodel that it needs.
///
/// A metamodel whose dependencies admit several choices has one linked metamodel, a variant, for
/// each consistent choice. Linked metamodels are made by `VersionRepository`, shared through
/// std::shared_ptr, and not changed once they are linked; from then on any number of threads may
/// read them. What changes them is for `VersionRepository::loadMetamodel`, on its thread. They
/// share what they link and so may outlive the repository. Their identity is their address: the
/// library compares them by pointer everywhere and never by content, so they cannot be copied
/// except by `clone()`.
class TARN_EVOLUTION_PATHFINDER_EXPORT LinkedMetamodel : public Metamodel {
 public:
  /// Pass key of the operations that build and fill a linked metamodel. A repository hands it to
  /// the classes derived from it (`VersionRepository::accessTag`).
  class AccessTag {
   private:
    friend class LinkedMetamodel;
    friend class VersionRepository;
    AccessTag() = default;
  };

  /// A linked metamodel without types, packages or links.
  LinkedMetamodel(const AccessTag& tag, const Metamodel& metamodel);
  LinkedMetamodel(const LinkedMetamodel&) = delete;
  LinkedMetamodel& operator=(const LinkedMetamodel&) = delete;
  bool operator==(const LinkedMetamodel&) const = delete;  ///< compare pointers

  /// Registers a type, not an empty handle, under its qualified name; the first registration under
  /// a name wins.
  void registerType(const AccessTag& tag, const tarn::meta::Type& type);

  /// Registers a package, not an empty handle, under its qualified name; the first registration
  /// under a name wins.
  void registerPackage(const AccessTag& tag, const tarn::meta::Package& package);

  void setMetamodelPackage(const AccessTag& tag, const tarn::meta::Package& package);

  /// The metamodel's own package; empty until it is set.
  tarn::meta::Package getMetamodelPackage() const { return metamodelPackage_; }

  /// Links `other` and everything that it links. Returns false when a name is already linked to
  /// another linked metamodel.
  ///
  /// What was linked before a conflict was met stays linked: after false, `other` itself may be
  /// linked. After an exception nothing has changed: std::invalid_argument for a null pointer, or
  /// std::bad_alloc.
  bool linkMetamodel(const std::shared_ptr<LinkedMetamodel>& other);

  /// The type registered here under that name; empty when there is none.
  tarn::meta::Type findTypeInMetamodelOnly(const std::u16string& qualifiedName) const;

  /// The package registered here under that name; empty when there is none.
  tarn::meta::Package findPackageInMetamodelOnly(const std::u16string& qualifiedName) const;

  /// The type registered under that name here or else in a linked metamodel, the first one in the
  /// order of `linkedMetamodels`; empty when there is none. Standard types are not consulted.
  tarn::meta::Type findType(const std::u16string& qualifiedName) const;

  /// As `findType`; empty as well when the type is not a class.
  tarn::meta::Class findClass(const std::u16string& qualifiedName) const;

  /// This metamodel's descriptor when `name` is its own, or else that of the metamodel linked under
  /// `name`, if any.
  std::optional<Metamodel> findMetamodel(const std::u16string& name) const;

  /// Appends to `out` every type registered here that is a subclass of `base`, which may be an
  /// element of `out`. The spelling is part of the interface.
  void fecthSubclassesInMetamodelOnly(const tarn::meta::Type& base,
                                      std::vector<tarn::meta::Type>& out) const;

  /// A new linked metamodel with the same content: the very same links, types and packages.
  std::shared_ptr<LinkedMetamodel> clone() const;

  /// The linked metamodels by name: the direct dependencies and all that they link, so the whole
  /// closure. To be changed through `linkMetamodel` only. A null pointer, as a look-up
  /// `linkedMetamodels[name]` makes it, is passed over here; what leaves `loadMetamodel` with one
  /// is refused.
  std::unordered_map<std::u16string, std::shared_ptr<LinkedMetamodel>> linkedMetamodels;

 private:
  tarn::meta::Package metamodelPackage_;
  std::unordered_map<std::u16string, tarn::meta::Type> types_;
  std::unordered_map<std::u16string, tarn::meta::Package> packages_;
};

/// Writes "LinkedMetamodel{name@version ->name@version ...}", the links in the order of their map.
TARN_EVOLUTION_PATHFINDER_EXPORT std::ostream& operator<<(std::ostream& out,
                                                          const LinkedMetamodel& linked);

}  // namespace tarn::evolution::pathfinder
