#include "catalogue/store/stored_cycle.hpp"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>

#include "catalogue/model/dependency_cycle.hpp"
#include "catalogue/store/sqlite_rows.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionRange;

namespace {

/// The versions of a store in slots. Gaps between positions leave no gaps between rows.
class StoredVersions {
 public:
  explicit StoredVersions(SqliteDatabase& database)
      : database_(database),
        selectText_(database, "SELECT position FROM metamodels WHERE name = ?1 AND version = ?2"),
        slots_(read()) {}

  const VersionSlots& slots() const { return slots_; }
  std::int64_t positionAt(std::uint32_t row) const { return positions_[row]; }

  Slot slotOf(std::int64_t position) const {
    const auto found = std::lower_bound(positions_.begin(), positions_.end(), position);
    if (found == positions_.end() || *found != position) {
      database_.failDamaged("table metamodels", "it has no row " + std::to_string(position));
    }
    return slots_.slotOf(static_cast<std::size_t>(found - positions_.begin()));
  }

  template <class Receive>
  void forCandidates(std::int64_t nameId, const VersionRange& range, const Receive& receive) {
    const auto name = names_.find(nameId);
    if (name == names_.end()) return;
    const auto findText = [&](const std::u16string& text) {
      auto rows = selectText_.query(nameId, storedVersion(text));
      return rows.next() ? slotOf(rows.number(0)) : nothing;
    };
    slots_.forAdmitted(name->second, range, findText, receive);
  }

 private:
  VersionSlots read() {
    SqliteStatement statement(database_,
                              "SELECT position, name, version, semver FROM metamodels "
                              "ORDER BY position");
    std::vector<VersionSlots::Version> versions;
    auto rows = statement.query();
    while (rows.next()) {
      const auto number = static_cast<NameNumber>(names_.size());
      const NameNumber name = names_.try_emplace(rows.number(1), number).first->second;
      const auto row = static_cast<std::uint32_t>(positions_.size());
      positions_.push_back(rows.number(0));
      versions.push_back(readRow(database_, "metamodels", positions_.back(), [&] {
        const auto semantic = optionalSemVerIn(rows, 3);
        return VersionSlots::Version{
            name, row, semantic ? Precedence(*semantic) : Precedence::of(versionIn(rows, 2)),
            semantic.has_value()};
      }));
    }
    return {std::move(versions), names_.size(), positions_.size()};
  }

  SqliteDatabase& database_;
  SqliteStatement selectText_;
  std::vector<std::int64_t> positions_;                 // of each row
  std::unordered_map<std::int64_t, NameNumber> names_;  // by the store's number of a name
  VersionSlots slots_;
};

}  // namespace

std::vector<std::int64_t> findStoredCycle(SqliteDatabase& database) {
  StoredVersions versions(database);
  std::vector<DependencyGraph::Dependency> dependencies;
  SqliteStatement statement(database,
                            "SELECT metamodel, name, version, lower, upper FROM dependencies "
                            "ORDER BY metamodel, ordinal");
  auto rows = statement.query();
  while (rows.next()) {
    const std::int64_t metamodel = rows.number(0);
    const VersionRange range =
        readRow(database, "dependencies", metamodel, [&] { return rangeIn(rows, 2); });
    versions.forCandidates(rows.number(1), range, [&](SlotInterval candidates) {
      dependencies.push_back({versions.slotOf(metamodel), candidates});
    });
  }
  std::vector<std::int64_t> cycle;
  for (const std::uint32_t row : findCycle(versions.slots(), std::move(dependencies))) {
    cycle.push_back(versions.positionAt(row));
  }
  return cycle;
}

}  // namespace tarn::evolution::catalogue
