#include "pathfinder/learning/plan_network.hpp"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "pathfinder/search/step_weight.hpp"

namespace tarn::evolution::pathfinder {

namespace {

constexpr std::uint32_t noEnd = std::numeric_limits<std::uint32_t>::max();

class NetworkBuilding {
 public:
  NetworkBuilding(const PlanningGround& ground, const std::vector<VersionSelection>& targets,
                  const LinkChoices* links, const OpenStart* start, const LapLimits& limits)
      : space_(ground.space),
        ground_(ground),
        links_(links),
        start_(start),
        targets_(targets),
        limits_(limits) {
    network_.nodeOf.assign(ground.space.versions.size(), SearchSpace::none);
  }

  std::optional<PlanNetwork> run() {
    if (space_.anyLinksOwnName) return std::nullopt;  // what a selection holds then is not certain
    for (const SearchSpace::Source& source : space_.sources) {
      if (!source.isRegular) return std::nullopt;
    }
    for (NameIndex name = 0; name < space_.names.size(); ++name) addName(name);
    if (!network_.isCut) network_.unrollings.clear();
    addNeighbours();
    if (links_ != nullptr) addNeeding();
    addSources();
    addTargets();
    return std::move(network_);
  }

 private:
  /// What leads on from a version.
  struct Onward {
    PlannedHop hop;
    std::uint32_t place;
  };
  using OnwardByTarget = std::map<VersionIndex, Onward>;

  /// The hops of a version that matter: of several to one version the first of the lightest. From
  /// "absent", what links can bring in.
  OnwardByTarget lightestMoves(VersionIndex version) const {
    if (space_.isAbsent(version)) return entriesOf(space_.versions[version].name);
    OnwardByTarget result;
    for (const SearchSpace::Move& move : space_.versions[version].moves) {
      if (move.target == version || !ground_.bounds[move.target].isReachable) continue;
      const Onward onward{move.expensive ? PlannedHop::Expensive : PlannedHop::Ordinary,
                          move.place};
      const auto [known, isNew] = result.try_emplace(move.target, onward);
      const bool isLighter = known->second.hop == PlannedHop::Expensive && !move.expensive;
      if (!isNew && isLighter) known->second = onward;
    }
    return result;
  }

  OnwardByTarget entriesOf(NameIndex name) const {
    OnwardByTarget result;
    const SearchSpace::Name& range = space_.names[name];
    for (VersionIndex version = range.first; version < range.end; ++version) {
      const bool isEntry = space_.versions[version].isEntry && ground_.bounds[version].isReachable;
      if (isEntry) result.emplace(version, Onward{PlannedHop::None, 0});
    }
    return result;
  }

  bool isEnd(VersionIndex version) const {
    const NameIndex name = space_.versions[version].name;
    return std::any_of(targets_.begin(), targets_.end(), [&](const VersionSelection& target) {
      return target[name] == SearchSpace::none || target[name] == version;
    });
  }

  bool isStart(VersionIndex version) const {
    const NameIndex name = space_.versions[version].name;
    return std::any_of(space_.sources.begin(), space_.sources.end(),
                       [&](const SearchSpace::Source& source) {
                         return !source.selection.empty() && source.selection[name] == version;
                       });
  }

  void addName(NameIndex name) {
    const VersionIndex first = space_.names[name].first;
    const std::size_t count = space_.names[name].end - first;
    moves_.assign(count, {});
    VersionGraph graph{std::vector<std::vector<VersionGraph::Onward>>(count),
                       std::vector<bool>(count),
                       std::vector<bool>(count),
                       {}};
    for (std::size_t place = 0; place < count; ++place) {
      const VersionIndex version = first + static_cast<VersionIndex>(place);
      graph.distance.push_back(ground_.bounds[version].distance);
      if (!ground_.bounds[version].isReachable) continue;
      graph.isStart[place] = isStart(version);
      graph.isEnd[place] = isEnd(version);
      moves_[place] = lightestMoves(version);
      for (const auto& [target, onward] : moves_[place]) {
        graph.onward[place].push_back({target - first, weightOf(onward.hop)});
      }
    }
    const Unrolling& unrolling = network_.unrollings.emplace_back(graph);
    const std::uint32_t laps = unrolling.isCyclic() ? limits_.laps[name] : 1;
    network_.isCut |= unrolling.isCyclic();
    network_.mayBeAbsent.push_back(space_.names[name].absent != SearchSpace::none);
    auto& line = lines_.emplace_back();
    for (const std::size_t place : unrolling.line()) {
      line.push_back(first + static_cast<VersionIndex>(place));
    }
    const auto nodes = static_cast<NodeIndex>(network_.nodes.size());
    addNodes(name, graph, unrolling, laps);
    const bool hasBeyond = unrolling.isCyclic() && limits_.isBeyondIn;
    const NodeIndex beyond = hasBeyond ? addBeyond(name) : SearchSpace::none;
    network_.names.push_back({nodes, static_cast<NodeIndex>(network_.nodes.size())});
    addArcs(first, unrolling, laps, beyond);
    measureRest(network_.names.back());
    if (limits_.isBeyondIn) measureStepsBefore(network_.names.back());
  }

  static std::uint64_t weightOf(PlannedHop hop) {
    return hop == PlannedHop::None ? 0 : hopWeight(hop == PlannedHop::Expensive);
  }

  /// Adds the versions on the line for each lap, but for those that lie on no way then.
  void addNodes(NameIndex name, const VersionGraph& graph, const Unrolling& unrolling,
                std::uint32_t laps) {
    const std::size_t count = graph.onward.size();
    std::vector<std::vector<std::size_t>> ahead(count * laps);
    std::vector<std::vector<std::size_t>> back(count * laps);
    std::vector<std::size_t> starts;
    std::vector<std::size_t> ends;
    for (std::uint32_t lap = 0; lap < laps; ++lap) {
      for (const std::size_t place : unrolling.line()) {
        const std::size_t own = lap * count + place;
        if (lap == 0 && graph.isStart[place]) starts.push_back(own);
        if (graph.isEnd[place]) ends.push_back(own);
        for (const VersionGraph::Onward& next : graph.onward[place]) {
          const std::size_t nextLap = lap + (unrolling.goesBack(place, next.target) ? 1 : 0);
          if (!unrolling.isOnLine(next.target) || nextLap == laps) continue;
          ahead[own].push_back(nextLap * count + next.target);
          back[nextLap * count + next.target].push_back(own);
        }
      }
    }
    const std::vector<bool> isReached = reachedFrom(std::move(starts), ahead);
    const std::vector<bool> leadsOn = reachedFrom(std::move(ends), back);
    nodes_.assign(count * laps, SearchSpace::none);
    for (std::uint32_t lap = 0; lap < laps; ++lap) {
      for (const std::size_t place : unrolling.line()) {
        if (!isReached[lap * count + place]) continue;
        if (!leadsOn[lap * count + place] && !limits_.isBeyondIn) continue;
        const auto version = space_.names[name].first + static_cast<VersionIndex>(place);
        const auto node = static_cast<NodeIndex>(network_.nodes.size());
        nodes_[lap * count + place] = node;
        if (lap == 0) network_.nodeOf[version] = node;
        network_.nodes.push_back(
            {.version = version,
             .name = name,
             .isAbsent = space_.isAbsent(version),
             .in = {},
             .out = {},
             .ordinaryStepsBefore = ground_.bounds[version].ordinaryStepsEver});
      }
    }
  }

  NodeIndex addBeyond(NameIndex name) {
    const auto node = static_cast<NodeIndex>(network_.nodes.size());
    network_.beyond.push_back(node);
    network_.nodes.push_back(
        {.version = SearchSpace::none, .name = name, .isAbsent = false, .in = {}, .out = {}});
    return node;
  }

  void addArcs(VersionIndex first, const Unrolling& unrolling, std::uint32_t laps,
               NodeIndex beyond) {
    const std::size_t count = moves_.size();
    for (std::uint32_t lap = 0; lap < laps; ++lap) {
      for (const std::size_t place : unrolling.line()) {
        const NodeIndex from = nodes_[lap * count + place];
        if (from == SearchSpace::none) continue;
        for (const auto& [target, onward] : moves_[place]) {
          const std::size_t next = target - first;
          if (!unrolling.isOnLine(next)) continue;
          const std::size_t nextLap = lap + (unrolling.goesBack(place, next) ? 1 : 0);
          addArc(from, nextLap == laps ? beyond : nodes_[nextLap * count + next], onward);
        }
      }
    }
  }

  void addArc(NodeIndex from, NodeIndex to, const Onward& onward) {
    if (to == SearchSpace::none) return;
    const auto arc = static_cast<ArcIndex>(network_.arcs.size());
    network_.arcs.push_back({from, to, onward.hop, onward.place});
    network_.nodes[from].out.push_back(arc);
    network_.nodes[to].in.push_back(arc);
  }

  /// What bounds say of steps holds for names that are never beyond; with them, only what each name
  /// does itself.
  void measureStepsBefore(const PlanNetwork::Name& name) {
    for (NodeIndex index = name.first; index < name.end; ++index) {
      PlanNetwork::Node& node = network_.nodes[index];
      std::uint32_t least = noEnd;
      for (const ArcIndex arc : node.in) {
        const std::uint32_t before = network_.nodes[network_.arcs[arc].from].ordinaryStepsBefore;
        least = std::min(least, before + (network_.arcs[arc].hop == PlannedHop::Ordinary ? 1 : 0));
      }
      const bool mayStart = node.version != SearchSpace::none && isStart(node.version);
      node.ordinaryStepsBefore = mayStart || node.in.empty() ? 0 : least;
    }
  }

  void measureRest(const PlanNetwork::Name& name) {
    for (NodeIndex index = name.end; index-- > name.first;) {
      PlanNetwork::Node& node = network_.nodes[index];
      const bool isAtEnd = node.version == SearchSpace::none || isEnd(node.version);
      node.expensiveLeft = node.ordinaryLeft = node.hopsLeft = isAtEnd ? 0 : noEnd;
      for (const ArcIndex arc : node.out) {
        const PlanNetwork::Node& next = network_.nodes[network_.arcs[arc].to];
        const PlannedHop hop = network_.arcs[arc].hop;
        node.expensiveLeft = std::min(node.expensiveLeft,
                                      next.expensiveLeft + (hop == PlannedHop::Expensive ? 1 : 0));
        node.ordinaryLeft =
            std::min(node.ordinaryLeft, next.ordinaryLeft + (hop == PlannedHop::Ordinary ? 1 : 0));
        node.hopsLeft = std::min(node.hopsLeft, next.hopsLeft + 1);
      }
    }
  }

  void addNeighbours() {
    for (NameIndex left = 0; left < space_.names.size(); ++left) {
      const auto& neighbours = ground_.compatibility.neighbours(left);
      for (std::size_t i = 0; i < neighbours.size(); ++i) {
        if (neighbours[i] > left) addNeighbours(left, neighbours[i], i);
      }
    }
  }

  void addNeighbours(NameIndex left, NameIndex right, std::size_t place) {
    PlanNetwork::Neighbours neighbours{left, right, {}};
    const auto& [leftFirst, leftEnd] = network_.names[left];
    const auto& [rightFirst, rightEnd] = network_.names[right];
    for (NodeIndex one = leftFirst; one < leftEnd; ++one) {
      for (NodeIndex other = rightFirst; other < rightEnd; ++other) {
        if (!areCompatible(one, other, place)) neighbours.incompatible.emplace_back(one, other);
      }
    }
    if (!neighbours.incompatible.empty()) network_.neighbours.push_back(std::move(neighbours));
  }

  /// The versions that a node may stand for.
  std::span<const VersionIndex> versionsOf(NodeIndex node) const {
    const VersionIndex& version = network_.nodes[node].version;
    if (version != SearchSpace::none) return {&version, 1};
    return lines_[network_.nodes[node].name];
  }

  bool areCompatible(NodeIndex left, NodeIndex right, std::size_t place) const {
    const auto others = versionsOf(right);
    for (const VersionIndex version : versionsOf(left)) {
      const ConstBitRow row = ground_.compatibility.row(version, place);
      const bool isAny = std::any_of(others.begin(), others.end(), [&](VersionIndex other) {
        return row.contains(space_.rankOf(other));
      });
      if (isAny) return true;
    }
    return false;
  }

  void addNeeding() {
    for (NodeIndex node = 0; node < network_.nodes.size(); ++node) {
      if (network_.nodes[node].isAbsent) continue;
      for (const VersionIndex version : versionsOf(node)) {
        for (const NameIndex needed : links_->needsOf(version)) addNeeding(node, version, needed);
      }
    }
  }

  void addNeeding(NodeIndex node, VersionIndex version, NameIndex needed) {
    if (space_.names[needed].absent == SearchSpace::none) return;
    const auto& neighbours = ground_.compatibility.neighbours(network_.nodes[node].name);
    const auto known = std::lower_bound(neighbours.begin(), neighbours.end(), needed);
    const bool areNeighbours = known != neighbours.end() && *known == needed;
    const auto place = static_cast<std::size_t>(known - neighbours.begin());
    const auto& [first, end] = network_.names[needed];
    for (NodeIndex entry = first; entry < end; ++entry) {
      const VersionIndex entered = network_.nodes[entry].version;
      if (entered == SearchSpace::none || !space_.versions[entered].isEntry) continue;
      // Otherwise what follows from other names excludes it.
      if (areNeighbours &&
          !ground_.compatibility.row(version, place).contains(space_.rankOf(entered))) {
        continue;
      }
      auto& needing = network_.nodes[entry].needing;
      if (needing.empty() || needing.back() != node) needing.push_back(node);
    }
  }

  /// Of those that lie on some way, in the first lap.
  std::vector<NodeIndex> nodesOf(const std::vector<VersionIndex>& versions) const {
    std::vector<NodeIndex> nodes;
    for (const VersionIndex version : versions) {
      const NodeIndex node = network_.nodeOf[version];
      if (node != SearchSpace::none) nodes.push_back(node);
    }
    return nodes;
  }

  void addSources() {
    if (start_ != nullptr) {
      for (const auto& versions : start_->versions) network_.starts.push_back(nodesOf(versions));
      return;
    }
    for (const SearchSpace::Source& source : space_.sources) {
      std::vector<NodeIndex> nodes = nodesOf(source.selection);
      if (nodes.size() == space_.names.size()) network_.sources.push_back(std::move(nodes));
    }
  }

  std::vector<NodeIndex> endsAt(VersionIndex version) const {
    const NameIndex name = space_.versions[version].name;
    std::vector<NodeIndex> ends = network_.copiesOf(version, name);
    for (const NodeIndex beyond : network_.beyond) {
      if (network_.nodes[beyond].name == name) ends.push_back(beyond);
    }
    return ends;
  }

  void addTargets() {
    for (const VersionSelection& target : targets_) {
      std::vector<std::vector<NodeIndex>> ends(target.size());
      bool isWithinReach = true;
      for (NameIndex name = 0; name < target.size(); ++name) {
        if (target[name] == SearchSpace::none) continue;
        ends[name] = endsAt(target[name]);
        isWithinReach &= !ends[name].empty();
      }
      if (isWithinReach) network_.targets.push_back(std::move(ends));
    }
  }

  const SearchSpace& space_;
  const PlanningGround& ground_;
  const LinkChoices* const links_;
  const OpenStart* const start_;
  const std::vector<VersionSelection>& targets_;
  PlanNetwork network_;
  const LapLimits& limits_;

  std::vector<std::vector<VersionIndex>> lines_;  // by name: what may lie on its ways

  // Of the name that is added, by version, and by lap and version.
  std::vector<OnwardByTarget> moves_;
  std::vector<NodeIndex> nodes_;
};

}  // namespace

std::optional<PlanNetwork> makePlanNetwork(const PlanningGround& ground,
                                           const std::vector<VersionSelection>& targets,
                                           const LinkChoices* links, const OpenStart* start,
                                           const LapLimits& limits) {
  return NetworkBuilding(ground, targets, links, start, limits).run();
}

}  // namespace tarn::evolution::pathfinder
