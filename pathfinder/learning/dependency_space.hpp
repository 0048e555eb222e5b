#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "pathfinder/learning/dependency_failures.hpp"
#include "pathfinder/learning/link_choices.hpp"
#include "pathfinder/learning/own_names.hpp"
#include "pathfinder/learning/selection_closure.hpp"
#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/learning/selection_question.hpp"
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
  /// Asks the application, once for each version that hops reach. Throws what it throws of what the
  /// selections stand for, InvalidFamilyVersion for a selected version that it does not know, and
  /// NotForDependencies when the question is of another kind. What fails of other versions is left
  /// out and noted, or the best assumed of it.
  DependencySpace(SelectionHost& host, const SelectionQuestion& question,
                  DependencyFailures& failures);

  /// The space of all that can be reached in that direction, whether it leads to the target or not,
  /// which need not be consistent. Nor need the question be closed: names that the source does not
  /// hold are no part of the space. Throws what the application throws, and NotForDependencies
  /// where the source leaves open which names it holds.
  DependencySpace(SelectionHost& host, const VersionsByName& from, const VersionsByName& to,
                  Direction itsDirection);
  DependencySpace(const DependencySpace&) = delete;
  DependencySpace& operator=(const DependencySpace&) = delete;
  ~DependencySpace() = default;

  /// Whether all that versions of the space depend on is in it.
  bool isClosed() const { return isClosed_; }

  /// Whether both selections stand for a baseline. Otherwise there is no path, and no space.
  bool hasEnds() const { return hasEnds_; }

  /// What each name may begin with; null when the source's selection leaves nothing open.
  const OpenStart* openStart() const { return isOpen_ ? &start_ : nullptr; }

  /// The same whether anything is open or not.
  const OpenStart& start() const { return start_; }

  std::span<const NameIndex> needsOf(VersionIndex version) const override {
    return dependencies[version];
  }
  void visitChoices(VersionSelection selection, const Decide& decide) const override;

  std::unique_ptr<SearchSpace> space = std::make_unique<SearchSpace>();
  std::vector<Compatibility::Requirement> requirements;

  /// The version of each name of the target; none for one that it leaves free.
  VersionSelection target;

  /// Where ends are open, the names that no hops bring to the target's version.
  std::vector<NameIndex> lost;

  Direction direction = Direction::Unknown;

  /// What each version depends on, as names of the space, in the order of its dependencies.
  std::vector<std::vector<NameIndex>> dependencies;

  // What versions point to.
  std::deque<Metamodel> descriptors;
  std::deque<std::vector<Hop>> hops;

 private:
  friend class DependencyBuilding;

  void buildFrom(SelectionHost& host, DependencyFailures& failures);
  bool visitNeeds(VersionIndex version, VersionSelection& selection, const Decide& decide) const;

  SelectionClosure source_;
  std::optional<SelectionClosure> target_;     // not of a space whose ends are open
  std::map<std::u16string, Metamodel> goals_;  // of such a space
  bool hasEnds_ = false;
  bool isOpen_ = false;
  bool isClosed_ = true;
  OpenStart start_;

  // By version: what it depends on, in the order of linking, and what it admits, in the
  // application's order.
  std::vector<NeedingVersion> needs_;
};

}  // namespace tarn::evolution::pathfinder
