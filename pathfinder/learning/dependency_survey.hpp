#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "pathfinder/learning/dependency_failures.hpp"
#include "pathfinder/learning/selection_closure.hpp"
#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/search/direction.hpp"

namespace tarn::evolution::pathfinder {

/// What an application tells of the versions that hops and dependencies lead to from a selection.
/// Each version is asked for once.
class DependencySurvey {
 public:
  struct Question {
    const SelectionClosure& source;

    /// Null where ends are open: then all that is within reach is of interest, whether it leads to
    /// the goals or not, and nothing is brought in.
    const SelectionClosure* target;

    const std::map<std::u16string, Metamodel>& goals;  ///< where ends are open
    Direction direction;
  };

  /// A hop, by its place among those of its version, and the place of the version that it leads to.
  struct Hopped {
    std::uint32_t place;
    std::size_t target;
  };

  struct Name;

  /// What a version depends on, and the versions that it admits, by their places, in the
  /// application's order.
  struct Need {
    Name* name;
    std::vector<std::size_t> admitted = {};
    std::vector<Metamodel> candidates = {};  // of a name that is held from the start
  };

  /// What has to stand beside a version, if its name is there.
  struct Peer {
    std::u16string name;
    bool isOptional;
    std::vector<Metamodel> admitted = {};
  };

  struct Version {
    const Metamodel* descriptor;
    std::vector<Hop> hops = {};        // that do not go against the direction
    std::vector<Hopped> targets = {};  // of those that lead to a version
    std::vector<Need> needs = {};      // in the order of linking
    std::vector<Peer> peers = {};
    bool isExplored = false;
    bool hasUnknownHops = false;
    bool isKept = false;
    bool areNeedsKnown = false;
    bool isLost = false;   // for what it needs is not known, and the best not assumed
    bool isEntry = false;  // whether it can be brought in
    VersionIndex index = SearchSpace::none;
  };

  struct Name {
    bool isCertain = false;  // whether the source holds it, whatever it brings in
    std::size_t starts = 0;  // how many of the versions the source may hold
    const Metamodel* goal = nullptr;
    std::deque<Version> versions = {};  // the source's first
    std::unordered_multimap<VersionId, std::size_t, std::hash<VersionId>> places = {};
    NameIndex index = 0;
    VersionIndex unknown = SearchSpace::none;  // stands for what unknown hops may lead to
  };

  /// Throws NotForDependencies when the question is of another kind.
  DependencySurvey(SelectionHost& host, DependencyFailures& failures, const Question& question);

  std::map<std::u16string, Name> names;
  std::deque<Metamodel> descriptors;  ///< of the versions

  bool isOpen = false;   ///< whether the source leaves open what some name begins with
  bool isClosed = true;  ///< whether no version depends on a name that is not there

 private:
  /// A hop as the application tells of it.
  struct Offered {
    Hop hop;
    std::optional<Metamodel> target;
    bool isOpposite = false;
  };

  bool areEndsOpen() const { return question_.target == nullptr; }

  void addNames();

  /// The place of the version among those of its name, where it is added if it is new.
  std::size_t addVersion(Name& name, Metamodel&& descriptor);

  /// Asks for the hops of versions that have come; false when there are none.
  bool explore();
  void follow(const std::u16string& text, Name& name, std::size_t place);
  std::vector<Offered> hopsFrom(const std::u16string& text, const Metamodel& from);
  void keepWhatLeadsToEnd(Name& name) const;

  /// Asks what versions that are kept depend on, and takes in what that brings in.
  void bringIn();
  void bringIn(Version& version);
  void addNeed(Version& version, const std::u16string& name, std::vector<Metamodel>&& candidates);
  std::vector<Peer> peersOf(const Metamodel& metamodel);

  SelectionHost& host_;
  DependencyFailures& failures_;
  const Question question_;
  std::vector<PeerRequirement> required_;
};

}  // namespace tarn::evolution::pathfinder
