// A dependency leads back when one of its candidates is in the strongly connected component of the
// version itself: just then the candidate depends on the version. What is left without these leads
// from component to component only, and so has no cycle.

#include "catalogue/model/dependency_split.hpp"

#include <utility>

#include "catalogue/model/dependency_components.hpp"
#include "catalogue/model/packed_rows.hpp"

namespace tarn::evolution::catalogue {

namespace {

using Position = CatalogueIndex::Position;

class DependencySplit {
 public:
  DependencySplit(const PackedRows& rows, const CatalogueIndex& index)
      : rows_(rows), index_(index), slots_(placeVersions()) {}

  std::unordered_map<Position, CatalogueMetamodel> run() const {
    const DependencyGraph graph(slots_.size(), edges());
    const DependencyComponents components(graph);
    std::unordered_map<Position, CatalogueMetamodel> result;
    for (const std::vector<Slot>& members : components.cyclic()) {
      for (const Slot slot : members) {
        const Position position = slots_.at(slot).row;
        CatalogueMetamodel metamodel = rows_.metamodel(position);
        makeRequirements(metamodel, leadBack(slot, components));
        result.emplace(position, std::move(metamodel));
      }
    }
    return result;
  }

 private:
  VersionSlots placeVersions() const {
    std::vector<VersionSlots::Version> versions;
    versions.reserve(rows_.versions().size());
    for (const auto& row : rows_.versions()) {
      versions.push_back({row.name, static_cast<std::uint32_t>(versions.size()),
                          rows_.precedenceOf(row.ordering()),
                          rows_.version(row.ordering()).isSemVer()});
    }
    return {std::move(versions), rows_.nameCount(), rows_.versions().size()};
  }

  template <class Receive>
  void forCandidates(const PackedRows::Dependency& dependency, const Receive& receive) const {
    const auto findText = [&](const std::u16string& text) {
      const auto found = index_.metamodelsAt(rows_.name(dependency.name), text);
      return found.empty() ? nothing : slots_.slotOf(found.front());
    };
    slots_.forAdmitted(dependency.name, rows_.range(dependency.range), findText, receive);
  }

  std::vector<DependencyGraph::Dependency> edges() const {
    std::vector<DependencyGraph::Dependency> result;
    for (Position position = 0; position < rows_.versions().size(); ++position) {
      for (std::size_t i = 0; i < rows_.dependencyCount(position); ++i) {
        forCandidates(rows_.dependency(position, i), [&](SlotInterval candidates) {
          result.push_back({slots_.slotOf(position), candidates});
        });
      }
    }
    return result;
  }

  std::vector<bool> leadBack(Slot from, const DependencyComponents& components) const {
    std::vector<bool> result;
    const std::size_t position = slots_.at(from).row;
    for (std::size_t i = 0; i < rows_.dependencyCount(position); ++i) {
      bool leadsBack = false;
      forCandidates(rows_.dependency(position, i), [&](SlotInterval candidates) {
        for (Slot slot = candidates.begin; slot < candidates.end && !leadsBack; ++slot) {
          leadsBack = components.areTogether(from, slot);
        }
      });
      result.push_back(leadsBack);
    }
    return result;
  }

  const PackedRows& rows_;
  const CatalogueIndex& index_;
  const VersionSlots slots_;
};

}  // namespace

void addDependency(CatalogueMetamodel& metamodel, pathfinder::PeerRequirement needed,
                   std::u16string note) {
  if (needed.isOptional) {
    metamodel.requirements.push_back({std::move(needed), std::move(note)});
    return;
  }
  auto& dependencies = metamodel.descriptor.dependencies;
  if (!note.empty()) {
    metamodel.dependencyNotes.resize(dependencies.size());
    metamodel.dependencyNotes.push_back(std::move(note));
  }
  dependencies.emplace_back(std::move(needed.name), std::move(needed.range));
}

void makeRequirements(CatalogueMetamodel& metamodel, const std::vector<bool>& leadsBack) {
  std::vector<pathfinder::Dependency> linking;
  std::vector<std::u16string> notes;
  for (std::size_t i = 0; i < leadsBack.size(); ++i) {
    pathfinder::Dependency& dependency = metamodel.descriptor.dependencies[i];
    std::u16string note = metamodel.noteOfDependency(i);
    if (leadsBack[i]) {
      metamodel.requirements.push_back(
          {{std::move(dependency.name), std::move(dependency.range), false}, std::move(note)});
    } else {
      linking.push_back(std::move(dependency));
      notes.push_back(std::move(note));
    }
  }
  metamodel.descriptor.dependencies = std::move(linking);
  metamodel.dependencyNotes = std::move(notes);
}

std::unordered_map<Position, CatalogueMetamodel> splitDependencies(const Catalogue& catalogue) {
  return DependencySplit(*catalogue.rows_, catalogue.index()).run();
}

}  // namespace tarn::evolution::catalogue
