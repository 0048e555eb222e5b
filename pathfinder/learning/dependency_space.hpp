#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "pathfinder/learning/open_start.hpp"
#include "pathfinder/learning/selection_closure.hpp"
#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/linking/selection_combination.hpp"
#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/search_space.hpp"

namespace tarn::evolution::pathfinder {

/// A search space that is made from what versions depend on, without linking them: where products
/// of dependencies have too many linked metamodels to be made.
///
/// For questions between two selections that are closed: whatever a version on the way depends on
/// is held from start to end. Then one version of each name tells which linked metamodels are
/// meant, and a selection can be held if each version has what it depends on beside it.
///
/// The source's selection may leave open which versions it brings in. Then the space is an open
/// start as well; its sources stand for all of them together.
class DependencySpace final : public OpenStart {
 public:
  /// Asks the application, once for each version that hops reach. Throws what it throws,
  /// InvalidFamilyVersion for a selected version that it does not know, and NotClosed when the
  /// question is of another kind.
  DependencySpace(SelectionHost& host, const VersionsByName& from, const VersionsByName& to);

  /// The space of all that can be reached in that direction, whether it leads to the target or not,
  /// which need not be consistent. Nor need the question be closed: names that the source does not
  /// hold are no part of the space. Its names of which no hops lead to the target's version are
  /// `lost`.
  DependencySpace(SelectionHost& host, const VersionsByName& from, const VersionsByName& to,
                  Direction itsDirection);
  DependencySpace(const DependencySpace&) = delete;
  DependencySpace& operator=(const DependencySpace&) = delete;
  ~DependencySpace() = default;

  /// Whether all that versions of the space depend on is in it.
  bool isClosed() const { return isClosed_; }

  /// Whether both selections stand for a baseline. Otherwise there is no path, and no space.
  bool hasEnds() const { return hasEnds_; }

  /// Null when the source's selection leaves nothing open.
  const OpenStart* openStart() const { return isOpen_ ? this : nullptr; }

  const std::vector<std::vector<VersionIndex>>& versions() const override { return starts_; }
  void visitChoices(const Decide& decide) const override;

  std::unique_ptr<SearchSpace> space = std::make_unique<SearchSpace>();
  std::vector<Compatibility::Requirement> requirements;

  /// The version of each name of the target; none for one that it leaves free.
  VersionSelection target;
  std::vector<NameIndex> lost;

  Direction direction = Direction::Unknown;

  /// What each version depends on, as names of the space, in the order of its dependencies.
  std::vector<std::vector<NameIndex>> dependencies;

  // What versions point to.
  std::deque<Metamodel> descriptors;
  std::deque<std::vector<Hop>> hops;

 private:
  friend class DependencySurvey;

  SelectionClosure source_;
  std::optional<SelectionClosure> target_;     // not of a space whose ends are open
  std::map<std::u16string, Metamodel> goals_;  // of such a space
  bool hasEnds_ = false;
  bool isOpen_ = false;
  bool isClosed_ = true;
  std::vector<std::vector<VersionIndex>> starts_;  // by name of the space

  // The versions of the source's closure, by their places; `none` for one that is not in the space.
  std::map<std::u16string, std::vector<VersionIndex>> indices_;
};

}  // namespace tarn::evolution::pathfinder
