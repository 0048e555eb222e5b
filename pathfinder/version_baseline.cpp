#include "pathfinder/version_baseline.hpp"

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include "pathfinder/values/as_class.hpp"
#include "pathfinder/values/entry_insertion.hpp"
#include "pathfinder/values/hashing.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::pathfinder {

namespace {

const LinkedMetamodel& notNull(const std::shared_ptr<LinkedMetamodel>& metamodel) {
  if (metamodel) return *metamodel;
  throw std::invalid_argument("A baseline is given a null pointer in place of a linked metamodel.");
}

}  // namespace

std::optional<VersionBaseline> VersionBaseline::create(
    const std::vector<std::shared_ptr<LinkedMetamodel>>& metamodels) {
  VersionBaseline result;
  for (const auto& metamodel : metamodels) {
    if (!result.tryEmplace(metamodel)) return std::nullopt;
    for (const auto& [name, linked] : metamodel->linkedMetamodels) {
      if (linked && !result.tryEmplace(linked)) return std::nullopt;
    }
  }
  return result;
}

bool VersionBaseline::admits(const std::shared_ptr<LinkedMetamodel>& metamodel) const {
  const auto present = metamodels.find(notNull(metamodel).name);
  if (present != metamodels.end()) return present->second == metamodel;
  const auto& links = metamodel->linkedMetamodels;
  return std::all_of(links.begin(), links.end(), [this](const auto& link) {
    const auto held = metamodels.find(link.first);
    return !link.second || held == metamodels.end() || held->second == link.second;
  });
}

bool VersionBaseline::tryEmplace(const std::shared_ptr<LinkedMetamodel>& metamodel) {
  if (!admits(metamodel)) return false;
  const auto& links = metamodel->linkedMetamodels;
  if (links.empty() || metamodels.contains(metamodel->name)) {
    metamodels.try_emplace(metamodel->name, metamodel);
    return true;
  }
  EntryInsertion entries(metamodels);
  entries.add(metamodel->name, metamodel);
  for (const auto& [name, linked] : links) {
    if (linked) entries.add(name, linked);
  }
  entries.keep();
  return true;
}

bool VersionBaseline::includes(const VersionBaseline& other) const {
  return std::all_of(other.metamodels.begin(), other.metamodels.end(), [this](const auto& entry) {
    const auto held = metamodels.find(entry.first);
    return held == metamodels.end() ? entry.second == nullptr : held->second == entry.second;
  });
}

bool VersionBaseline::operator==(const VersionBaseline&) const = default;

tarn::meta::Type VersionBaseline::findType(const std::u16string& qualifiedName) const {
  for (const auto& [name, metamodel] : metamodels) {
    if (!metamodel) continue;
    if (tarn::meta::Type found = metamodel->findTypeInMetamodelOnly(qualifiedName)) return found;
  }
  return lookupStandardType(qualifiedName);
}

tarn::meta::Class VersionBaseline::findClass(const std::u16string& qualifiedName) const {
  return asClass(findType(qualifiedName));
}

std::vector<tarn::meta::Type> VersionBaseline::fetchSubclasses(const tarn::meta::Type& base) const {
  std::vector<tarn::meta::Type> result;
  for (const auto& [name, metamodel] : metamodels) {
    if (metamodel) metamodel->fecthSubclassesInMetamodelOnly(base, result);
  }
  return result;
}

std::ostream& operator<<(std::ostream& out, const VersionBaseline& baseline) {
  out << "Baseline {";
  const char* separator = "";
  for (const auto& [name, metamodel] : baseline.metamodels) {
    out << separator;
    if (metamodel) {
      out << static_cast<const Metamodel&>(*metamodel);
    } else {
      out << fl::i18n::ustring_to_utf8(name);
    }
    separator = ", ";
  }
  return out << "}";
}

}  // namespace tarn::evolution::pathfinder

std::size_t std::hash<tarn::evolution::pathfinder::VersionBaseline>::operator()(
    const tarn::evolution::pathfinder::VersionBaseline& baseline) const noexcept {
  using namespace tarn::evolution::pathfinder;
  std::size_t seed = 0;
  for (const auto& [name, metamodel] : baseline.metamodels) {
    seed = mixHash(seed, std::hash<std::u16string>()(name));
    seed = mixHash(seed, metamodel ? hashNameAndVersion(metamodel->name, metamodel->version) : 0);
  }
  return seed;
}
