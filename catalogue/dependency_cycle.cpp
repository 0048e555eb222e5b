#include "catalogue/dependency_cycle.hpp"

#include <algorithm>
#include <numeric>
#include <optional>
#include <unordered_map>

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::SemVer;
using pathfinder::SemVerRange;

namespace {

using Position = CatalogueIndex::Position;
using SemanticVersions = std::vector<CatalogueIndex::SemanticVersion>;

/// The semantic versions of one name, those that are cleared being stepped over at no cost.
class OpenVersions {
 public:
  explicit OpenVersions(const SemanticVersions& versions)
      : versions_(&versions), next_(versions.size() + 1) {
    std::iota(next_.begin(), next_.end(), std::size_t{0});
  }

  /// The first slot from `slot` on whose version is not cleared; `end()` when there is none.
  std::size_t openFrom(std::size_t slot) {
    while (next_[slot] != slot) {
      next_[slot] = next_[next_[slot]];
      slot = next_[slot];
    }
    return slot;
  }

  std::size_t end() const { return versions_->size(); }
  std::size_t lowerBound(const SemVer& version) const {
    const auto found = std::lower_bound(
        versions_->begin(), versions_->end(), version,
        [](const auto& entry, const SemVer& bound) { return entry.version < bound; });
    return static_cast<std::size_t>(found - versions_->begin());
  }
  Position position(std::size_t slot) const { return (*versions_)[slot].position; }

  void clear(const SemVer& version, Position position) {
    std::size_t slot = lowerBound(version);
    while (this->position(slot) != position) ++slot;
    next_[slot] = slot + 1;
  }

 private:
  const SemanticVersions* versions_;
  std::vector<std::size_t> next_;  // a forest whose roots are the open slots and the end
};

/// Depth-first search that keeps its own stack: chains of dependencies may be long.
class CycleSearch {
 public:
  CycleSearch(const std::vector<CatalogueMetamodel>& metamodels, const CatalogueIndex& index)
      : metamodels_(metamodels), index_(index), states_(metamodels.size(), State::Untouched) {}

  std::vector<Position> run() {
    for (Position start = 0; start < metamodels_.size(); ++start) {
      if (states_[start] != State::Untouched) continue;
      enter(start);
      while (!trail_.empty()) {
        const std::optional<Position> next = nextCandidate();
        if (!next) {
          leave();
        } else if (states_[*next] == State::OnTrail) {
          return trailFrom(*next);
        } else {
          enter(*next);
        }
      }
    }
    return {};
  }

 private:
  enum class State : char { Untouched, OnTrail, Cleared };

  struct Visit {
    Position position;
    std::size_t dependency;  // the one being looked at
  };

  void enter(Position position) {
    states_[position] = State::OnTrail;
    trail_.push_back({position, 0});
  }

  void leave() {
    const Position position = trail_.back().position;
    trail_.pop_back();
    states_[position] = State::Cleared;
    const auto& [descriptor, equivalent] = metamodels_[position];
    if (descriptor.version.isSemVer()) {
      openVersions(descriptor.name).clear(descriptor.version.getSemVer(), position);
    } else if (equivalent) {
      openVersions(descriptor.name).clear(*equivalent, position);
    }
  }

  /// The next candidate of the last visit's dependencies that is not cleared, if any.
  std::optional<Position> nextCandidate() {
    Visit& visit = trail_.back();
    const auto& dependencies = metamodels_[visit.position].descriptor.dependencies;
    for (; visit.dependency < dependencies.size(); ++visit.dependency) {
      if (const auto candidate = openCandidate(dependencies[visit.dependency])) return candidate;
    }
    return std::nullopt;
  }

  std::optional<Position> openCandidate(const Dependency& dependency) {
    if (!dependency.range.isSemVerRange()) {
      const auto& found = index_.metamodelsAt(dependency.name, dependency.range.getText());
      if (found.empty() || states_[found.front()] == State::Cleared) return std::nullopt;
      return found.front();
    }
    const SemVerRange& range = dependency.range.getSemVerRange();
    OpenVersions& versions = openVersions(dependency.name);
    const std::size_t slot = versions.openFrom(versions.lowerBound(range.lower));
    if (slot >= versions.lowerBound(range.upper)) return std::nullopt;
    return versions.position(slot);
  }

  OpenVersions& openVersions(const std::u16string& name) {
    return openVersions_.try_emplace(name, index_.semanticVersions(name)).first->second;
  }

  std::vector<Position> trailFrom(Position start) const {
    std::vector<Position> cycle;
    for (const Visit& visit : trail_) {
      if (visit.position == start || !cycle.empty()) cycle.push_back(visit.position);
    }
    return cycle;
  }

  const std::vector<CatalogueMetamodel>& metamodels_;
  const CatalogueIndex& index_;
  std::vector<State> states_;
  std::vector<Visit> trail_;
  std::unordered_map<std::u16string, OpenVersions> openVersions_;
};

}  // namespace

std::vector<Position> findDependencyCycle(const std::vector<CatalogueMetamodel>& metamodels,
                                          const CatalogueIndex& index) {
  return CycleSearch(metamodels, index).run();
}

}  // namespace tarn::evolution::catalogue
