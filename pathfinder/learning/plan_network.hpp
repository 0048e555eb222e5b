#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "pathfinder/learning/link_choices.hpp"
#include "pathfinder/learning/unrolling.hpp"
#include "pathfinder/planning/backward_plan.hpp"
#include "pathfinder/planning/compatibility.hpp"
#include "pathfinder/planning/search_space.hpp"
#include "pathfinder/planning/step_problem.hpp"

namespace tarn::evolution::pathfinder {

using NodeIndex = std::uint32_t;
using ArcIndex = std::uint32_t;

/// The ways that the names of a search space can go: for each name a graph without cycles, whose
/// nodes are versions that some way from a source to a target holds, and whose arcs are hops. A
/// name that links have to bring in begins at a node for "absent", from which arcs lead to the
/// versions that can be brought in. Where the hops of a name form cycles, its versions have a node
/// for each lap, up to some number of laps. What is more may be left out, or stand for itself as a
/// node "beyond": an end, at which the name holds whichever of its versions suits.
struct PlanNetwork {
  struct Node {
    VersionIndex version;  ///< none for "beyond"
    NameIndex name;
    bool isAbsent;
    std::vector<ArcIndex> in;
    std::vector<ArcIndex> out;

    /// Where links can bring it in: the nodes that depend on its name and admit it. One of these is
    /// entered in the step in which it is brought in.
    std::vector<NodeIndex> needing = {};

    /// After how many steps with an ordinary hop it can be held, in any plan.
    std::uint32_t ordinaryStepsBefore = 0;

    // The least that a way from here to an end of the name takes.
    std::uint32_t expensiveLeft = 0;
    std::uint32_t ordinaryLeft = 0;  ///< whatever that means for expensive ones
    std::uint32_t hopsLeft = 0;
  };

  struct Arc {
    NodeIndex from;
    NodeIndex to;
    PlannedHop hop;       ///< none: links bring the name in
    std::uint32_t place;  ///< of the hop, among those of the version that it leaves
  };

  struct Name {
    NodeIndex first;  ///< its nodes are those from here ...
    NodeIndex end;    ///< ... up to but without this one
  };

  /// Two names, the first one smaller, of which some versions cannot stand together.
  struct Neighbours {
    NameIndex left;
    NameIndex right;
    std::vector<std::pair<NodeIndex, NodeIndex>> incompatible;
  };

  std::vector<Node> nodes;
  std::vector<Arc> arcs;
  std::vector<Name> names;
  std::vector<Neighbours> neighbours;
  std::vector<NodeIndex> nodeOf;  ///< by version, in the first lap; none if that lies on no way

  /// The nodes of a version in all laps.
  std::vector<NodeIndex> copiesOf(VersionIndex version, NameIndex name) const {
    std::vector<NodeIndex> copies;
    for (NodeIndex node = names[name].first; node < names[name].end; ++node) {
      if (nodes[node].version == version) copies.push_back(node);
    }
    return copies;
  }

  std::vector<bool> mayBeAbsent;  ///< by name: whether links have to bring it in, or may have to

  bool isCut = false;                 ///< whether there are ways of more laps
  std::vector<Unrolling> unrollings;  ///< by name; empty when nothing is cut
  std::vector<NodeIndex> beyond;      ///< the nodes for what is more

  /// For each source that a plan can start from: the node of each name.
  std::vector<std::vector<NodeIndex>> sources;

  /// For an open start, in place of sources: the nodes that each name may begin at.
  std::vector<std::vector<NodeIndex>> starts;

  /// Whether there is anything to begin at.
  bool canBegin() const {
    return !sources.empty() ||
           (!starts.empty() && std::none_of(starts.begin(), starts.end(),
                                            [](const auto& start) { return start.empty(); }));
  }

  /// For each target that can be reached: the nodes that each name may end at; none for a name that
  /// it leaves free.
  std::vector<std::vector<std::vector<NodeIndex>>> targets;
};

/// How often the ways of a network go back.
struct LapLimits {
  std::vector<std::uint32_t> laps;  ///< by name: as many laps at most
  bool isBeyondIn = false;          ///< whether "beyond" stands for more
};

/// No value when the space has sources that are not regular or versions that link others of their
/// own name. `links`: null if no name can be absent.
std::optional<PlanNetwork> makePlanNetwork(const PlanningGround& ground,
                                           const std::vector<VersionSelection>& targets,
                                           const LinkChoices* links, const OpenStart* start,
                                           const LapLimits& limits);

}  // namespace tarn::evolution::pathfinder
