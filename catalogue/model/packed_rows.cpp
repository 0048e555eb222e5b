#include "catalogue/model/packed_rows.hpp"

#include <utility>

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

std::size_t PackedRows::RangeHash::operator()(
    const pathfinder::VersionRange& range) const noexcept {
  if (!range.isSemVerRange()) return std::hash<std::u16string>()(range.getText());
  const auto& [lower, upper] = range.getSemVerRange();
  const std::hash<VersionId> hash;
  return hash(lower) * 31 + hash(upper);
}

std::uint32_t PackedRows::addVersion(const VersionId& version) {
  const std::uint32_t number = versionIds_.add(version);
  if (number == precedences_.size()) precedences_.push_back(Precedence::of(version));
  return number;
}

void PackedRows::add(const CatalogueMetamodel& metamodel) {
  const auto& [descriptor, equivalent, note, dependencyNotes, requirements] = metamodel;
  if (!note.empty() || !dependencyNotes.empty() || !requirements.empty()) {
    extras_.emplace(versions_.size(), Extras{note, dependencyNotes, requirements});
    hasRequirements_ = hasRequirements_ || !requirements.empty();
  }
  versions_.push_back({names_.add(descriptor.name), addVersion(descriptor.version),
                       equivalent ? addVersion(*equivalent) : nothing, dependencies_.size()});
  for (const pathfinder::Dependency& dependency : descriptor.dependencies) {
    dependencies_.push_back({names_.add(dependency.name), ranges_.add(dependency.range)});
  }
}

void PackedRows::add(const pathfinder::Hop& hop) {
  hops_.push_back({names_.add(hop.name), addVersion(hop.from), addVersion(hop.to), hop.expensive});
}

CatalogueMetamodel PackedRows::metamodel(std::size_t position) const {
  const Version& row = versions_[position];
  CatalogueMetamodel result{{name(row.name), version(row.version), {}}};
  auto& dependencies = result.descriptor.dependencies;
  dependencies.reserve(dependencyCount(position));
  for (std::size_t i = row.dependenciesBegin; i < dependenciesEnd(position); ++i) {
    dependencies.emplace_back(name(dependencies_[i].name), range(dependencies_[i].range));
  }
  if (row.equivalent != nothing) result.equivalent = version(row.equivalent).getSemVer();
  if (const auto extras = extras_.find(position); extras != extras_.end()) {
    result.note = extras->second.note;
    result.dependencyNotes = extras->second.dependencyNotes;
    result.requirements = extras->second.requirements;
  }
  return result;
}

pathfinder::Hop PackedRows::hop(std::size_t position) const {
  const Hop& row = hops_[position];
  return {name(row.name), version(row.from), version(row.to), row.expensive};
}

std::shared_ptr<const PackedRows> packRows(const std::vector<CatalogueMetamodel>& metamodels,
                                           const std::vector<pathfinder::Hop>& hops) {
  auto rows = std::make_shared<PackedRows>();
  for (const CatalogueMetamodel& metamodel : metamodels) rows->add(metamodel);
  for (const pathfinder::Hop& hop : hops) rows->add(hop);
  return rows;
}

}  // namespace tarn::evolution::catalogue
