#include "catalogue/store/sqlite_validation.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "catalogue/store/sqlite_dependency_graph.hpp"
#include "catalogue/store/sqlite_rows.hpp"
#include "catalogue/text/unsoundness.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Metamodel;

namespace {

/// The first of the new metamodels whose version stands twice, and where it stands first.
constexpr const char* selectRepeated = R"(
  SELECT later.position, min(earlier.position), names.name, later.version
  FROM metamodels later
  JOIN metamodels earlier ON earlier.name = later.name AND earlier.version = later.version
    AND earlier.position < later.position
  JOIN names ON names.id = later.name
  WHERE later.position >= ?1
  GROUP BY later.position ORDER BY later.position LIMIT 1)";

/// The first of the new metamodels whose equivalent another text version has as well.
constexpr const char* selectSharing = R"(
  SELECT later.position, min(earlier.position), names.name, earlier.version, later.equivalent
  FROM metamodels later
  JOIN metamodels earlier ON earlier.name = later.name AND earlier.semver = later.equivalent
    AND earlier.equivalent IS NOT NULL AND earlier.position < later.position
  JOIN names ON names.id = later.name
  WHERE later.position >= ?1 AND later.equivalent IS NOT NULL
  GROUP BY later.position ORDER BY later.position LIMIT 1)";

constexpr const char* selectUnknownDependency = R"(
  SELECT dependencies.metamodel, dependencies.ordinal, names.name
  FROM dependencies JOIN names ON names.id = dependencies.name
  WHERE dependencies.metamodel >= ?1
    AND NOT EXISTS (SELECT 1 FROM metamodels WHERE metamodels.name = dependencies.name)
  ORDER BY dependencies.metamodel, dependencies.ordinal LIMIT 1)";

/// The first new hop that does not lead between two versions that are there.
constexpr const char* selectLooseHop = R"(
  WITH checked AS (
    SELECT position, name, source, target,
      EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name) AS has_name,
      EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.version = hops.source)
        OR EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.semver = hops.source)
        AS has_source,
      EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.version = hops.target)
        OR EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.semver = hops.target)
        AS has_target
    FROM hops WHERE position >= ?1)
  SELECT checked.position, names.name, checked.source, checked.target, has_name, has_source
  FROM checked JOIN names ON names.id = checked.name
  WHERE NOT (has_name AND has_source AND has_target)
  ORDER BY checked.position LIMIT 1)";

class Validation {
 public:
  Validation(SqliteDatabase& database, std::int64_t firstMetamodel, std::int64_t firstHop)
      : database_(database), firstMetamodel_(firstMetamodel), firstHop_(firstHop) {}

  void run() {
    checkMetamodels();
    checkHops();
    checkCycles();
  }

 private:
  std::size_t fromFirst(std::int64_t position) const {
    return static_cast<std::size_t>(position - firstMetamodel_);
  }

  std::string where(std::int64_t position) const {
    if (position < firstMetamodel_) return "in the store";
    return "at " + metamodelPlace(fromFirst(position));
  }

  /// Throws the error of the metamodel that comes first; of several errors of one metamodel, that
  /// of its version before that of its equivalent before that of a dependency.
  void checkMetamodels() {
    collectRepeated();
    collectSharing();
    collectUnknownDependency();
    const auto first = std::min_element(
        errors_.begin(), errors_.end(),
        [](const auto& left, const auto& right) { return left.first < right.first; });
    if (first == errors_.end()) return;
    throw CatalogueError(first->second.place(), first->second.reason());
  }

  void collectRepeated() {
    SqliteStatement statement(database_, selectRepeated);
    auto rows = statement.query(firstMetamodel_);
    if (!rows.next()) return;
    const std::int64_t position = rows.number(0);
    errors_.emplace_back(position, standsTwice(fromFirst(position),
                                               Metamodel(textIn(rows, 2), versionIn(rows, 3), {}),
                                               where(rows.number(1))));
  }

  void collectSharing() {
    SqliteStatement statement(database_, selectSharing);
    auto rows = statement.query(firstMetamodel_);
    if (!rows.next()) return;
    const std::int64_t position = rows.number(0);
    errors_.emplace_back(position,
                         sharesEquivalent(fromFirst(position), semVerIn(rows, 4),
                                          Metamodel(textIn(rows, 2), versionIn(rows, 3), {}),
                                          where(rows.number(1))));
  }

  void collectUnknownDependency() {
    SqliteStatement statement(database_, selectUnknownDependency);
    auto rows = statement.query(firstMetamodel_);
    if (!rows.next()) return;
    const std::int64_t position = rows.number(0);
    errors_.emplace_back(
        position, dependsOnUnknownName(fromFirst(position),
                                       static_cast<std::size_t>(rows.number(1)), textIn(rows, 2)));
  }

  void checkHops() {
    SqliteStatement statement(database_, selectLooseHop);
    auto rows = statement.query(firstHop_);
    if (!rows.next()) return;
    const auto position = static_cast<std::size_t>(rows.number(0) - firstHop_);
    const std::u16string name = textIn(rows, 1);
    if (rows.number(4) == 0) throw hopOfUnknownName(position, name);
    if (rows.number(5) == 0) throw hopOfUnknownVersion(position, "from", name, versionIn(rows, 2));
    throw hopOfUnknownVersion(position, "to", name, versionIn(rows, 3));
  }

  void checkCycles() {
    std::vector<std::int64_t> positions = findStoredCycle(database_);
    if (positions.empty()) return;
    // There was none before, so it goes through a new metamodel; it is told from there.
    std::rotate(positions.begin(),
                std::find_if(positions.begin(), positions.end(),
                             [&](std::int64_t position) { return position >= firstMetamodel_; }),
                positions.end());
    SqliteStatement statement(database_,
                              "SELECT names.name, version FROM metamodels "
                              "JOIN names ON names.id = metamodels.name WHERE position = ?1");
    std::vector<Metamodel> cycle;
    for (const std::int64_t position : positions) {
      auto rows = statement.query(position);
      rows.next();
      cycle.emplace_back(textIn(rows, 0), versionIn(rows, 1),
                         std::vector<pathfinder::Dependency>());
    }
    throw dependsOnItself(fromFirst(positions.front()), cycle);
  }

  SqliteDatabase& database_;
  std::int64_t firstMetamodel_;
  std::int64_t firstHop_;
  std::vector<std::pair<std::int64_t, CatalogueError>> errors_;  // by position
};

}  // namespace

void validateAdded(SqliteDatabase& database, std::int64_t firstMetamodel, std::int64_t firstHop) {
  Validation(database, firstMetamodel, firstHop).run();
}

}  // namespace tarn::evolution::catalogue
