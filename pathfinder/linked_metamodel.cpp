#include "pathfinder/linked_metamodel.hpp"

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include "pathfinder/values/as_class.hpp"
#include "pathfinder/values/entry_insertion.hpp"
#include "pathfinder/values/error_text.hpp"
#include "platform/text.hpp"

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
  if (!other) throw std::invalid_argument(briefText(*this) + " is given a null pointer to link.");
  if (linkedMetamodels.empty() && !other->linkedMetamodels.contains(other->name)) {
    // Copying a map is cheaper than filling one.
    auto links = other->linkedMetamodels;
    links.emplace(other->name, other);
    linkedMetamodels = std::move(links);
    return true;
  }
  if (const auto own = linkedMetamodels.find(other->name); own != linkedMetamodels.end()) {
    return own->second == other;
  }
  EntryInsertion links(linkedMetamodels);
  links.add(other->name, other);
  const auto& all = other->linkedMetamodels;
  const bool agrees = std::all_of(all.begin(), all.end(), [&](const auto& link) {
    return !link.second || links.add(link.first, link.second) == link.second;
  });
  links.keep();
  return agrees;
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
    if (!linked) continue;
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
  if (linked == linkedMetamodels.end() || !linked->second) return std::nullopt;
  return descriptor(*linked->second);
}

void LinkedMetamodel::fecthSubclassesInMetamodelOnly(const tarn::meta::Type& base,
                                                     std::vector<tarn::meta::Type>& out) const {
  std::vector<tarn::meta::Type> found;  // added in the end, as that may move `base`
  for (const auto& [qualifiedName, type] : types_) {
    if (type->isSubclassOf(base)) found.push_back(type);
  }
  out.insert(out.end(), found.begin(), found.end());
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
    out << " ->";
    if (dependency) {
      out << descriptor(*dependency);
    } else {
      out << fl::i18n::ustring_to_utf8(name);
    }
  }
  return out << "}";
}

}  // namespace tarn::evolution::pathfinder
