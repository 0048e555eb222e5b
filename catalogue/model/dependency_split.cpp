// A dependency leads back when one of its candidates is in the strongly connected component of the
// version itself: just then the candidate depends on the version. What is left without these leads
// from component to component only, and so has no cycle.

#include "catalogue/model/dependency_split.hpp"

#include <string_view>
#include <utility>

#include "catalogue/model/dependency_components.hpp"

namespace tarn::evolution::catalogue {

namespace {

using Position = CatalogueIndex::Position;

class DependencySplit {
 public:
  DependencySplit(const std::vector<CatalogueMetamodel>& metamodels, const CatalogueIndex& index)
      : metamodels_(metamodels), index_(index), slots_(placeVersions()) {}

  std::unordered_map<Position, CatalogueMetamodel> run() const {
    const DependencyGraph graph(slots_.size(), edges());
    const DependencyComponents components(graph);
    std::unordered_map<Position, CatalogueMetamodel> result;
    for (const std::vector<Slot>& members : components.cyclic()) {
      for (const Slot slot : members) {
        const Position position = slots_.at(slot).row;
        CatalogueMetamodel metamodel = metamodels_[position];
        makeRequirements(metamodel, leadBack(slot, components));
        result.emplace(position, std::move(metamodel));
      }
    }
    return result;
  }

 private:
  VersionSlots placeVersions() {
    std::vector<VersionSlots::Version> versions;
    for (const CatalogueMetamodel& metamodel : metamodels_) {
      const auto number = static_cast<NameNumber>(names_.size());
      const NameNumber name = names_.try_emplace(metamodel.descriptor.name, number).first->second;
      versions.push_back({name, static_cast<std::uint32_t>(versions.size()), metamodel.precedence(),
                          metamodel.semVer().has_value()});
    }
    return {std::move(versions), names_.size(), metamodels_.size()};
  }

  template <class Receive>
  void forCandidates(const pathfinder::Dependency& dependency, const Receive& receive) const {
    const auto findText = [&](const std::u16string& text) {
      const auto& found = index_.metamodelsAt(dependency.name, text);
      return found.empty() ? nothing : slots_.slotOf(found.front());
    };
    slots_.forAdmitted(names_.at(dependency.name), dependency.range, findText, receive);
  }

  std::vector<DependencyGraph::Dependency> edges() const {
    std::vector<DependencyGraph::Dependency> result;
    for (Position position = 0; position < metamodels_.size(); ++position) {
      for (const auto& dependency : metamodels_[position].descriptor.dependencies) {
        forCandidates(dependency, [&](SlotInterval candidates) {
          result.push_back({slots_.slotOf(position), candidates});
        });
      }
    }
    return result;
  }

  std::vector<bool> leadBack(Slot from, const DependencyComponents& components) const {
    std::vector<bool> result;
    for (const auto& dependency : metamodels_[slots_.at(from).row].descriptor.dependencies) {
      bool leadsBack = false;
      forCandidates(dependency, [&](SlotInterval candidates) {
        for (Slot slot = candidates.begin; slot < candidates.end && !leadsBack; ++slot) {
          leadsBack = components.areTogether(from, slot);
        }
      });
      result.push_back(leadsBack);
    }
    return result;
  }

  const std::vector<CatalogueMetamodel>& metamodels_;
  const CatalogueIndex& index_;
  std::unordered_map<std::u16string_view, NameNumber> names_;
  const VersionSlots slots_;
};

}  // namespace

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

std::unordered_map<Position, CatalogueMetamodel> splitDependencies(
    const std::vector<CatalogueMetamodel>& metamodels, const CatalogueIndex& index) {
  return DependencySplit(metamodels, index).run();
}

}  // namespace tarn::evolution::catalogue
