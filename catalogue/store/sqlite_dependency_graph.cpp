#include "catalogue/store/sqlite_dependency_graph.hpp"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "catalogue/dependency_graph.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/store/sqlite_rows.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::SemVerRange;
using pathfinder::VersionRange;

namespace {

using Node = DependencyGraph::Node;
using Slot = DependencyGraph::Slot;
using Candidates = DependencyGraph::Candidates;

/// The versions of a store in slots: by name, then those without a semantic version, then the
/// others by ascending semantic version.
class StoredVersions {
 public:
  explicit StoredVersions(SqliteDatabase& database)
      : database_(database),
        selectText_(database, "SELECT position FROM metamodels WHERE name = ?1 AND version = ?2") {
    readPositions(database);
    readSlots(database);
  }

  const std::vector<Node>& nodeAt() const { return nodeAt_; }
  std::int64_t positionOf(Node node) const { return positions_[node]; }

  Node nodeOf(std::int64_t position) const {
    const auto found = std::lower_bound(positions_.begin(), positions_.end(), position);
    if (found == positions_.end() || *found != position) {
      database_.failDamaged("table metamodels", "it has no row " + std::to_string(position));
    }
    return static_cast<Node>(found - positions_.begin());
  }

  Candidates candidates(std::int64_t name, const VersionRange& range,
                        const DependencyGraph& graph) {
    if (!range.isSemVerRange()) {
      auto rows = selectText_.query(name, storedVersion(range.getText()));
      if (!rows.next()) return {0, 0};
      const Slot slot = graph.slotOf(nodeOf(rows.number(0)));
      return {slot, slot + 1};
    }
    const auto found = semantic_.find(name);
    if (found == semantic_.end()) return {0, 0};
    const auto begin = versions_.begin() + found->second.first;
    const auto end = versions_.begin() + found->second.last;
    const SemVerRange& bounds = range.getSemVerRange();
    const auto first = std::lower_bound(begin, end, bounds.lower);
    const auto last =
        range == VersionRange::singleVersion(bounds.lower)  // whose end may have wrapped
            ? std::upper_bound(first, end, bounds.lower)
            : std::lower_bound(begin, end, bounds.upper);
    return {static_cast<Slot>(first - versions_.begin()),
            static_cast<Slot>(last - versions_.begin())};
  }

 private:
  void readPositions(SqliteDatabase& database) {
    SqliteStatement statement(database, "SELECT position FROM metamodels ORDER BY position");
    auto rows = statement.query();
    while (rows.next()) positions_.push_back(rows.number(0));
  }

  void readSlots(SqliteDatabase& database) {
    SqliteStatement statement(
        database, "SELECT name, position, semver FROM metamodels ORDER BY name, semver, position");
    auto rows = statement.query();
    std::vector<bool> isPlaced(positions_.size());
    while (rows.next()) {
      const std::int64_t position = rows.number(1);
      const auto version =
          readRow(database, "metamodels", position, [&] { return optionalSemVerIn(rows, 2); });
      const auto slot = static_cast<Slot>(nodeAt_.size());
      nodeAt_.push_back(nodeOf(position));
      if (isPlaced[nodeAt_.back()]) failIndex();
      isPlaced[nodeAt_.back()] = true;
      versions_.push_back(version.value_or(SemVer()));
      if (!version) continue;
      semantic_.try_emplace(rows.number(0), Candidates{slot, slot}).first->second.last = slot + 1;
    }
    if (nodeAt_.size() != positions_.size()) failIndex();
  }

  [[noreturn]] void failIndex() const {
    database_.failDamaged("index metamodels_by_semver", "it is not that of its table");
  }

  const SqliteDatabase& database_;
  SqliteStatement selectText_;
  std::vector<std::int64_t> positions_;                    // of each node
  std::vector<Node> nodeAt_;                               // each slot
  std::vector<SemVer> versions_;                           // in each slot, where there is one
  std::unordered_map<std::int64_t, Candidates> semantic_;  // slots of each name's semantic versions
};

}  // namespace

std::vector<std::int64_t> findStoredCycle(SqliteDatabase& database) {
  StoredVersions versions(database);
  DependencyGraph graph(versions.nodeAt());
  SqliteStatement statement(database,
                            "SELECT metamodel, name, version, lower, upper FROM dependencies "
                            "ORDER BY metamodel, ordinal");
  auto rows = statement.query();
  while (rows.next()) {
    const std::int64_t metamodel = rows.number(0);
    const VersionRange range =
        readRow(database, "dependencies", metamodel, [&] { return rangeIn(rows, 2); });
    for (const VersionRange& piece : piecesOf(range)) {
      graph.addDependency(versions.nodeOf(metamodel),
                          versions.candidates(rows.number(1), piece, graph));
    }
  }
  std::vector<std::int64_t> cycle;
  for (const Node node : graph.findCycle()) cycle.push_back(versions.positionOf(node));
  return cycle;
}

}  // namespace tarn::evolution::catalogue
