#pragma once

#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "pathfinder/learning/link_choices.hpp"
#include "pathfinder/learning/selection_closure.hpp"
#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/linking/selection_combination.hpp"
#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// A search space that is made from what versions depend on, without linking them: where products
/// of dependencies have too many linked metamodels to be made.
///
/// For questions between two selections. One version of each name that is held tells which linked
/// metamodels are meant; a selection can be held if each version has what it depends on beside it,
/// and each name that no hop has moved into it, or that was not there before, is one that some
/// version depends on.
///
/// The source's selection may leave open which versions it brings in. Then the space has an open
/// start as well; its sources stand for all of them together.
class DependencySpace final : public LinkChoices {
 public:
  /// Asks the application, once for each version that hops reach. Throws what it throws,
  /// InvalidFamilyVersion for a selected version that it does not know, and NotForDependencies when
  /// the question is of another kind.
  DependencySpace(SelectionHost& host, const VersionsByName& from, const VersionsByName& to);
  DependencySpace(const DependencySpace&) = delete;
  DependencySpace& operator=(const DependencySpace&) = delete;
  ~DependencySpace() = default;

  /// Whether both selections stand for a baseline. Otherwise there is no path, and no space.
  bool hasEnds() const { return hasEnds_; }

  /// Null when the source's selection leaves nothing open.
  const OpenStart* openStart() const { return isOpen_ ? &start_ : nullptr; }

  std::span<const NameIndex> needsOf(VersionIndex version) const override {
    return dependencies[version];
  }
  void visitChoices(VersionSelection selection, const Decide& decide) const override;

  std::unique_ptr<SearchSpace> space = std::make_unique<SearchSpace>();
  std::vector<Compatibility::Requirement> requirements;

  /// The version of each name of the target; none for one that it leaves free.
  VersionSelection target;

  Direction direction = Direction::Unknown;

  /// What each version depends on, as names of the space, in the order of its dependencies.
  std::vector<std::vector<NameIndex>> dependencies;

  // What versions point to.
  std::deque<Metamodel> descriptors;
  std::deque<std::vector<Hop>> hops;

 private:
  friend class DependencySurvey;

  /// What a version depends on, and the versions that it admits, in the application's order.
  struct Need {
    NameIndex name;
    std::vector<VersionIndex> admitted;
  };

  bool visitNeeds(VersionIndex version, VersionSelection& selection, const Decide& decide) const;

  SelectionClosure source_;
  SelectionClosure target_;
  bool hasEnds_ = false;
  bool isOpen_ = false;
  OpenStart start_;
  std::vector<std::vector<Need>> needs_;  // by version, in the order of linking
};

}  // namespace tarn::evolution::pathfinder
