#include "pathfinder/linked_metamodel.hpp"

#include <ostream>

#include "pathfinder/class_test.hpp"

namespace tarn::evolution::pathfinder {

namespace {

/// The handle stored under `name`, or an empty one.
template <class HandleMap>
typename HandleMap::mapped_type findHandle(const HandleMap& handles, const std::u16string& name) {
  const auto found = handles.find(name);
  return found == handles.end() ? typename HandleMap::mapped_type() : found->second;
}

const Metamodel& descriptor(const LinkedMetamodel& linked) {
  return linked;
}

}  // namespace

LinkedMetamodel::LinkedMetamodel(const AccessTag& /*tag*/, const Metamodel& metamodel)
    : Metamodel(metamodel) {}

void LinkedMetamodel::registerType(const AccessTag& /*tag*/, const tarn::meta::Type& type) {
  types_.try_emplace(type->getQualifiedName(), type);
}

void LinkedMetamodel::registerPackage(const AccessTag& /*tag*/,
                                      const tarn::meta::Package& package) {
  packages_.try_emplace(package->getQualifiedName(), package);
}

void LinkedMetamodel::setMetamodelPackage(const AccessTag& /*tag*/,
                                          const tarn::meta::Package& package) {
  metamodelPackage_ = package;
}

bool LinkedMetamodel::linkMetamodel(const std::shared_ptr<LinkedMetamodel>& other) {
  if (linkedMetamodels.empty() && !other->linkedMetamodels.contains(other->name)) {
    // Copying a map is cheaper than filling one.
    auto links = other->linkedMetamodels;
    links.emplace(other->name, other);
    linkedMetamodels = std::move(links);
    return true;
  }
  const auto [own, isNew] = linkedMetamodels.try_emplace(other->name, other);
  if (!isNew) return own->second == other;
  for (const auto& [linkedName, linked] : other->linkedMetamodels) {
    const auto [present, inserted] = linkedMetamodels.try_emplace(linkedName, linked);
    if (!inserted && present->second != linked) return false;
  }
  return true;
}

tarn::meta::Type LinkedMetamodel::findTypeInMetamodelOnly(
    const std::u16string& qualifiedName) const {
  return findHandle(types_, qualifiedName);
}

tarn::meta::Package LinkedMetamodel::findPackageInMetamodelOnly(
    const std::u16string& qualifiedName) const {
  return findHandle(packages_, qualifiedName);
}

tarn::meta::Type LinkedMetamodel::findType(const std::u16string& qualifiedName) const {
  if (tarn::meta::Type own = findTypeInMetamodelOnly(qualifiedName)) return own;
  for (const auto& [linkedName, linked] : linkedMetamodels) {
    if (tarn::meta::Type found = linked->findTypeInMetamodelOnly(qualifiedName)) return found;
  }
  return {};
}

tarn::meta::Class LinkedMetamodel::findClass(const std::u16string& qualifiedName) const {
  return asClass(findType(qualifiedName));
}

std::optional<Metamodel> LinkedMetamodel::findMetamodel(const std::u16string& wantedName) const {
  if (wantedName == name) return descriptor(*this);
  const auto linked = linkedMetamodels.find(wantedName);
  if (linked == linkedMetamodels.end()) return std::nullopt;
  return descriptor(*linked->second);
}

void LinkedMetamodel::fecthSubclassesInMetamodelOnly(const tarn::meta::Type& base,
                                                     std::vector<tarn::meta::Type>& out) const {
  for (const auto& [qualifiedName, type] : types_) {
    if (type->isSubclassOf(base)) out.push_back(type);
  }
}

std::shared_ptr<LinkedMetamodel> LinkedMetamodel::clone() const {
  auto copy = std::make_shared<LinkedMetamodel>(AccessTag(), *this);
  copy->linkedMetamodels = linkedMetamodels;
  copy->metamodelPackage_ = metamodelPackage_;
  copy->types_ = types_;
  copy->packages_ = packages_;
  return copy;
}

std::ostream& operator<<(std::ostream& out, const LinkedMetamodel& linked) {
  out << "LinkedMetamodel{" << descriptor(linked);
  for (const auto& [name, dependency] : linked.linkedMetamodels) {
    out << " ->" << descriptor(*dependency);
  }
  return out << "}";
}

}  // namespace tarn::evolution::pathfinder
